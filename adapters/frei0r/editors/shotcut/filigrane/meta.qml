// Made by ./dev docs.
import QtQuick 2.0
import org.shotcut.qml 1.0

Metadata {
    type: Metadata.Filter
    name: 'Filigrane'
    keywords: 'lines grid ripple hand-drawn filigrane'
    mlt_service: 'frei0r.filigrane'
    objectName: 'filigrane'
    qml: 'ui.qml'

    keyframes {
        allowAnimateIn: false
        allowAnimateOut: false
        simpleProperties: []
        parameters: [
            Parameter {
                name: 'Position X'
                property: 'Position X'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Position Y'
                property: 'Position Y'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Rotation'
                property: 'Rotation'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Compression Center X'
                property: 'Compression Center X'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Compression Center Y'
                property: 'Compression Center Y'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Line Compression'
                property: 'Line Compression'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Line Spacing Randomness'
                property: 'Line Spacing Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Normal Line Width (NLW)'
                property: 'Normal Line Width (NLW)'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'NLW Randomness'
                property: 'NLW Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Stressed Line Width'
                property: 'Stressed Line Width'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Distortion'
                property: 'Distortion'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Distortion Randomness'
                property: 'Distortion Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Blend Amount'
                property: 'Blend Amount'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Opacity'
                property: 'Opacity'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Opacity Randomness'
                property: 'Opacity Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Tolerance'
                property: 'Tolerance'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Vertical Length'
                property: 'Vertical Length'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Horizontal Length'
                property: 'Horizontal Length'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Length Randomness'
                property: 'Length Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Vertical Starting Point X'
                property: 'Vertical Starting Point X'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Vertical Starting Point Y'
                property: 'Vertical Starting Point Y'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Horizontal Starting Point X'
                property: 'Horizontal Starting Point X'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Horizontal Starting Point Y'
                property: 'Horizontal Starting Point Y'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Starting Point Randomness'
                property: 'Starting Point Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Vertical Offset'
                property: 'Vertical Offset'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Horizontal Offset'
                property: 'Horizontal Offset'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Vertical Growth'
                property: 'Vertical Growth'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Horizontal Growth'
                property: 'Horizontal Growth'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Growth Randomness'
                property: 'Growth Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Frequency'
                property: 'Frequency'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Frequency Randomness'
                property: 'Frequency Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Size'
                property: 'Size'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Size Randomness'
                property: 'Size Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Speed'
                property: 'Speed'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Speed Randomness'
                property: 'Speed Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Turbulance'
                property: 'Turbulance'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Turbulance Randomness'
                property: 'Turbulance Randomness'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Random Seed'
                property: 'Random Seed'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Angle of Displacement'
                property: 'Angle of Displacement'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Amount of Displacement'
                property: 'Amount of Displacement'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: 'Soften'
                property: 'Soften'
                isCurve: true
                minimum: 0
                maximum: 1
            }
        ]
    }

}
