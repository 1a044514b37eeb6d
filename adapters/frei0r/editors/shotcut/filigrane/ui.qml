// Made by ./dev docs.
import QtQuick 2.12
import QtQuick.Controls 2.12
import QtQuick.Layouts 1.12
import Shotcut.Controls 1.0 as Shotcut

Item {
    id: panel

    // What is shown is low + share * (high - low); the filter keeps the share.
    readonly property var rows: [
        {name: 'Look', property: 'Look', kind: 'choice', standard: 'none', animated: false, choices: ['none', 'angular-wires', 'bent-crossings', 'combed-hair', 'misty-trunks', 'morning-grass', 'neon-ripples', 'night-traffic', 'pencil-grid', 'pinched-grid', 'plain-weave', 'reeded-glass', 'silk-ribbons', 'slow-turn', 'soft-rain', 'tartan', 'willow-curtain'], values: ['none', 'angular-wires', 'bent-crossings', 'combed-hair', 'misty-trunks', 'morning-grass', 'neon-ripples', 'night-traffic', 'pencil-grid', 'pinched-grid', 'plain-weave', 'reeded-glass', 'silk-ribbons', 'slow-turn', 'soft-rain', 'tartan', 'willow-curtain'],
            hint: 'A look to begin with: the name of one that ships with Filigrane, or a preset\'s file. A parameter that is at its default takes the look\'s value.'},
        {name: 'Frame Rate', property: 'Frame Rate', kind: 'text', standard: '25', animated: false,
            hint: 'How many pictures a second the animation has: 25, 29.97, 30000/1001. Set it to the project\'s rate for a new picture in every frame.'},
        {name: 'Height', property: 'Height', kind: 'slider', standard: 0.1, animated: false, low: 0, high: 2000, minimum: 2, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Height of the grid that the lines lie in. The shorter the grid, the shorter the vertical lines and the closer the horizontal ones.'},
        {name: 'Width', property: 'Width', kind: 'slider', standard: 0.1, animated: false, low: 0, high: 2000, minimum: 2, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Width of the grid. The narrower the grid, the shorter the horizontal lines and the closer the vertical ones.'},
        {name: 'Make Size Match Layer Size', property: 'Make Size Match Layer Size', kind: 'toggle', standard: 1, animated: false,
            hint: 'Makes the grid as large as the layer. Turn it off to give the grid a size of its own with "Width" and "Height".'},
        {name: 'Position X', property: 'Position X', kind: 'slider', standard: 0.5, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'Where the middle of the grid lies on the layer.'},
        {name: 'Position Y', property: 'Position Y', kind: 'slider', standard: 0.5, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'Where the middle of the grid lies on the layer.'},
        {name: 'Rotation', property: 'Rotation', kind: 'slider', standard: 0.5, animated: true, low: -1000, high: 1000, minimum: -1000, maximum: 1000, decimals: 1, suffix: ' °',
            hint: 'Turns the grid and everything in it about its middle, clockwise.'},
        {name: 'Rows', property: 'Rows', kind: 'slider', standard: 0.04, animated: false, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 0, suffix: '',
            hint: 'How many horizontal lines there are. 0 draws none.'},
        {name: 'Columns', property: 'Columns', kind: 'slider', standard: 0.04, animated: false, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 0, suffix: '',
            hint: 'How many vertical lines there are. 0 draws none.'},
        {name: 'Show Grid', property: 'Show Grid', kind: 'toggle', standard: 0, animated: false,
            hint: 'Draws the borders between the grid\'s cells as half-transparent red lines one pixel wide. Meant for setting a look up; turn it off for the final picture.'},
        {name: 'Compression Center X', property: 'Compression Center X', kind: 'slider', standard: 0.5, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'The point that "Line Compression" pulls the lines to, or pushes them away from.'},
        {name: 'Compression Center Y', property: 'Compression Center Y', kind: 'slider', standard: 0.5, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'The point that "Line Compression" pulls the lines to, or pushes them away from.'},
        {name: 'Line Compression', property: 'Line Compression', kind: 'slider', standard: 0.5, animated: true, low: -100, high: 100, minimum: -100, maximum: 100, decimals: 0, suffix: '',
            hint: 'Moves every line by this share of its distance from the compression centre: towards it below 0 (at -100 all lines lie on it), away from it above 0. The lines\' length stays.'},
        {name: 'Line Spacing Randomness', property: 'Line Spacing Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Moves each line by chance within its cell. At 100% it can lie anywhere in the cell, at 0% it lies in the middle.'},
        {name: 'Normal Line Width (NLW)', property: 'Normal Line Width (NLW)', kind: 'slider', standard: 0.01, animated: true, low: 0, high: 200, minimum: 1, maximum: 200, decimals: 0, suffix: '',
            hint: 'How thick a line is where it lies on its base. A line is never thinner than 1.2 pixels.'},
        {name: 'NLW Randomness', property: 'NLW Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 2000, minimum: 0, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Spreads the width from line to line by up to this much above and below "Normal Line Width (NLW)". Above 100 many lines have the least width.'},
        {name: 'Stressed Line Width', property: 'Stressed Line Width', kind: 'slider', standard: 1, animated: true, low: -100, high: 100, minimum: -100, maximum: 100, decimals: 0, suffix: '',
            hint: 'How much thicker a line is where it swings farthest from its base: twice as thick at 100, the same at 0, thinned to nothing at -100.'},
        {name: 'Distortion', property: 'Distortion', kind: 'slider', standard: 0.35, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 0, suffix: '',
            hint: 'How far along a straight line a rippled line bends it, on either side of the crossing.'},
        {name: 'Distortion Randomness', property: 'Distortion Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Spreads the reach of the bends from crossing to crossing by up to this much above and below "Distortion".'},
        {name: 'Normal Color', property: 'Normal Color', kind: 'color', standard: '#0000ff', animated: false,
            hint: 'The colour of a line near its base. Only red, green and blue count: how opaque a line is, "Opacity" says.'},
        {name: 'Stressed Color', property: 'Stressed Color', kind: 'color', standard: '#ff0000', animated: false,
            hint: 'The colour of a line where it swings away from its base.'},
        {name: 'Blend Amount', property: 'Blend Amount', kind: 'slider', standard: 0.5, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'How the two colours share a line: at 0% it has the normal colour alone, at 100% the stressed one alone; between them the normal colour stays near the base and the stressed one where the line swings farthest, with a smooth passage.'},
        {name: 'Opacity', property: 'Opacity', kind: 'slider', standard: 1, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'How opaque the lines are. Where half-transparent lines lie over each other, the picture is denser.'},
        {name: 'Opacity Randomness', property: 'Opacity Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Spreads the opacity from line to line by up to this much above and below "Opacity"; above 100% a line is simply opaque.'},
        {name: 'Angular Lines', property: 'Angular Lines', kind: 'toggle', standard: 0, animated: false,
            hint: 'Draws ripples and bends as a few straight pieces instead of smoothly.'},
        {name: 'Tolerance', property: 'Tolerance', kind: 'slider', standard: 0.05, animated: true, low: 0, high: 20, minimum: 1, maximum: 20, decimals: 0, suffix: '',
            hint: 'How fine angular lines are: a ripple has so many straight pieces in each cell, a bend so many corners between its ends.'},
        {name: 'Composite On Original', property: 'Composite On Original', kind: 'toggle', standard: 0, animated: false,
            hint: 'Draws the lines over the picture. Off, the lines stand alone on a transparent frame.'},
        {name: 'Fast Draw', property: 'Fast Draw', kind: 'toggle', standard: 0, animated: false,
            hint: 'Draws every line in its normal colour and normal width, which takes less time. Meant for setting a look up.'},
        {name: 'Lines Have Ends', property: 'Lines Have Ends', kind: 'toggle', standard: 0, animated: false,
            hint: 'Lines start at a starting point, grow with every frame, and stop at a length, instead of crossing the whole grid. All lines then ripple, and none is bent at a crossing.'},
        {name: 'Lock Horizontal To Vertical', property: 'Lock Horizontal To Vertical', kind: 'toggle', standard: 0, animated: false,
            hint: 'Horizontal lines take their length, offset and growth from the vertical lines\' settings, and start at the across-position of the vertical starting point.'},
        {name: 'Vertical Length', property: 'Vertical Length', kind: 'slider', standard: 0.05, animated: true, low: 0, high: 4000, minimum: 0, maximum: 4000, decimals: 0, suffix: '',
            hint: 'The length at which a vertical line stops growing.'},
        {name: 'Horizontal Length', property: 'Horizontal Length', kind: 'slider', standard: 0.05, animated: true, low: 0, high: 4000, minimum: 0, maximum: 4000, decimals: 0, suffix: '',
            hint: 'The length at which a horizontal line stops growing.'},
        {name: 'Length Randomness', property: 'Length Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 2000, minimum: 0, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Spreads the length from line to line by up to this much above and below the set one, for both directions.'},
        {name: 'Vertical Starting Point X', property: 'Vertical Starting Point X', kind: 'slider', standard: 0.5, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'The height at which vertical lines start; they grow downwards. Only the vertical coordinate counts, but with "Lock Horizontal To Vertical" the other one says where horizontal lines start.'},
        {name: 'Vertical Starting Point Y', property: 'Vertical Starting Point Y', kind: 'slider', standard: 0.42, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'The height at which vertical lines start; they grow downwards. Only the vertical coordinate counts, but with "Lock Horizontal To Vertical" the other one says where horizontal lines start.'},
        {name: 'Horizontal Starting Point X', property: 'Horizontal Starting Point X', kind: 'slider', standard: 0.42, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'Where across the frame horizontal lines start; they grow to the right. Only the horizontal coordinate counts.'},
        {name: 'Horizontal Starting Point Y', property: 'Horizontal Starting Point Y', kind: 'slider', standard: 0.5, animated: true, low: -200, high: 300, minimum: -200, maximum: 300, decimals: 1, suffix: ' %',
            hint: 'Where across the frame horizontal lines start; they grow to the right. Only the horizontal coordinate counts.'},
        {name: 'Starting Point Randomness', property: 'Starting Point Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Moves the start of each line by chance, by up to this share of the grid\'s height (vertical lines) or width (horizontal lines) to either side.'},
        {name: 'Vertical Offset', property: 'Vertical Offset', kind: 'slider', standard: 0.5, animated: true, low: -4000, high: 4000, minimum: -4000, maximum: 4000, decimals: 0, suffix: '',
            hint: 'Moves the start of all vertical lines down (up below 0). Animate it to let lines of one length travel.'},
        {name: 'Horizontal Offset', property: 'Horizontal Offset', kind: 'slider', standard: 0.5, animated: true, low: -4000, high: 4000, minimum: -4000, maximum: 4000, decimals: 0, suffix: '',
            hint: 'Moves the start of all horizontal lines to the right (to the left below 0).'},
        {name: 'Vertical Growth', property: 'Vertical Growth', kind: 'slider', standard: 0.03, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: '',
            hint: 'How much longer a vertical line gets with every frame, from frame 0 on, until it has its length. With keyframes the growth of all frames so far is added up. 0 from the start draws no vertical line.'},
        {name: 'Horizontal Growth', property: 'Horizontal Growth', kind: 'slider', standard: 0.03, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: '',
            hint: 'How much longer a horizontal line gets with every frame, from frame 0 on, until it has its length.'},
        {name: 'Growth Randomness', property: 'Growth Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 2000, minimum: 0, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Meant to spread the growth from line to line. In this version it has no visible effect: use "Length Randomness" and "Starting Point Randomness" for lines that differ.'},
        {name: 'Line Wrapping', property: 'Line Wrapping', kind: 'toggle', standard: 0, animated: false,
            hint: 'What a line with ends has beyond the far edge of the grid comes in again at the near edge. Off, it is cut off there.'},
        {name: 'Frequency', property: 'Frequency', kind: 'slider', standard: 0.75, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'How close the waves of a ripple follow each other. At 0% a wave is as long as half of the grid\'s width and height together, at 100% it is 10 pixels long.'},
        {name: 'Frequency Randomness', property: 'Frequency Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Spreads the length of the waves from line to line by up to this much above and below the set one.'},
        {name: 'Size', property: 'Size', kind: 'slider', standard: 0.15, animated: true, low: 0, high: 100, minimum: 1, maximum: 100, decimals: 0, suffix: '',
            hint: 'How far a ripple swings to either side of the line\'s base. Turbulence adds to it.'},
        {name: 'Size Randomness', property: 'Size Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 2000, minimum: 0, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Spreads the size of the ripples from line to line by up to this much above and below "Size".'},
        {name: 'Speed', property: 'Speed', kind: 'slider', standard: 0.05, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 0, suffix: '',
            hint: 'How fast the finer waves run along the line from frame to frame. The coarsest wave stays where it is; at 0 the finer ones still move a little.'},
        {name: 'Speed Randomness', property: 'Speed Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 2000, minimum: 0, maximum: 2000, decimals: 0, suffix: '',
            hint: 'Spreads the speed from line to line by up to this much above and below "Speed".'},
        {name: 'Turbulance', property: 'Turbulance', kind: 'slider', standard: 0.428571429, animated: true, low: 0, high: 7, minimum: 1, maximum: 7, decimals: 1, suffix: '',
            hint: 'How many finer waves, each weaker than the one before, lie on top of a ripple. Whole numbers add a wave each, the part behind the point fades the last one in.'},
        {name: 'Turbulance Randomness', property: 'Turbulance Randomness', kind: 'slider', standard: 0, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Spreads the turbulence from line to line by up to this much above and below "Turbulance".'},
        {name: 'Affect', property: 'Affect', kind: 'choice', standard: 1, animated: false, choices: ['Vert Lines', 'Horz Lines', 'Both'], values: ['0', '0.5', '1'],
            hint: 'Which lines ripple: the vertical ones, the horizontal ones, or both. With one direction chosen, the lines of the other are straight and are bent where rippled lines cross them.'},
        {name: 'Random Seed', property: 'Random Seed', kind: 'slider', standard: 0.012345, animated: true, low: 0, high: 1000000, minimum: 1, maximum: 1000000, decimals: 0, suffix: '',
            hint: 'Chooses the chance. The same seed with the same settings gives the same picture at the same frame, always; another seed gives another one.'},
        {name: 'Use Displacement', property: 'Use Displacement', kind: 'toggle', standard: 0, animated: false,
            hint: 'Instead of being drawn, the lines push the picture aside where they lie.'},
        {name: 'Angle of Displacement', property: 'Angle of Displacement', kind: 'slider', standard: 0.5, animated: true, low: -1000, high: 1000, minimum: -1000, maximum: 1000, decimals: 1, suffix: ' °',
            hint: 'The direction of the displacement: at 0 the picture is taken from below (it moves up), at 90 from the right, at 180 from above, at 270 from the left.'},
        {name: 'Amount of Displacement', property: 'Amount of Displacement', kind: 'slider', standard: 0.03, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 0, suffix: '',
            hint: 'How far an opaque line pushes the picture. Across and down it is cut to whole pixels, so some quarter turns lose one.'},
        {name: 'Soften', property: 'Soften', kind: 'slider', standard: 0.5, animated: true, low: 0, high: 100, minimum: 0, maximum: 100, decimals: 1, suffix: ' %',
            hint: 'Makes the push fall off from the middle of a line to its edge: at 0% the edge is hard, at 100% the line is strongest along its middle only.'},
    ]
    property var defaultParameters: rows.map(function(row) { return row.property; })
    property bool showing: false // controls follow the filter, and do not change it

    function getPosition() {
        return Math.max(producer.position - (filter.in - producer.in), 0);
    }

    // What the filter has, or would have if it said nothing.
    function kept(row) {
        var text = filter.get(row.property);
        return text === '' ? String(row.standard) : text;
    }

    function setControls() {
        if (showing)
            return ;

        showing = true;
        for (var i = 0; i < controls.count; i++)
            controls.itemAt(i).show(getPosition());
        showing = false;
    }

    function setDefault(row) {
        filter.resetProperty(row.property);
        filter.set(row.property, row.standard);
    }

    width: 400
    height: list.implicitHeight + 16
    Component.onCompleted: {
        filter.set('threads', 1); // slices of a frame are no frames
        if (filter.isNew) {
            for (var i = 0; i < rows.length; i++)
                setDefault(rows[i]);
            filter.set('Frame Rate', String(profile.fps));
            filter.savePreset(defaultParameters);
        }
        setControls();
    }

    Component {
        id: slider

        Shotcut.SliderSpinner {
            function show(position) {
                var moves = row.animated && filter.keyframeCount(row.property) > 0;
                var share = moves ? filter.getDouble(row.property, position) : parseFloat(panel.kept(row));
                value = row.low + share * (row.high - row.low);
            }

            minimumValue: row.minimum
            maximumValue: row.maximum
            decimals: row.decimals
            suffix: row.suffix
            onValueChanged: changed((value - row.low) / (row.high - row.low))
        }

    }

    Component {
        id: choice

        Shotcut.ComboBox {
            function show(position) {
                var text = panel.kept(row);
                var at = row.values.indexOf(text);
                if (at < 0)
                    at = row.values.findIndex(function(value) { return Math.abs(parseFloat(value) - parseFloat(text)) < 0.01; });

                currentIndex = Math.max(at, 0);
            }

            model: row.choices
            onActivated: changed(row.values[currentIndex])
        }

    }

    Component {
        id: toggle

        CheckBox {
            function show(position) {
                checked = parseFloat(panel.kept(row)) >= 0.5;
            }

            onToggled: changed(checked ? 1 : 0)
        }

    }

    Component {
        id: color

        Shotcut.ColorPicker {
            function show(position) {
                value = panel.kept(row);
            }

            eyedropper: false
            onValueChanged: changed(value)
        }

    }

    Component {
        id: words

        TextField {
            function show(position) {
                text = panel.kept(row);
            }

            selectByMouse: true
            onEditingFinished: changed(text)
        }

    }

    ColumnLayout {
        id: list

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 8

        Shotcut.Preset {
            parameters: defaultParameters
            onPresetSelected: setControls()
        }

        Repeater {
            id: controls

            model: rows

            RowLayout {
                id: line

                property var parameter: modelData

                function show(position) {
                    keys.checked = parameter.animated && filter.keyframeCount(parameter.property) > 0;
                    editor.item.show(position);
                }

                function store(value) {
                    if (panel.showing)
                        return ;

                    if (parameter.animated && keys.checked)
                        filter.set(parameter.property, value, panel.getPosition());
                    else
                        filter.set(parameter.property, value);
                }

                Label {
                    text: parameter.name
                    horizontalAlignment: Text.AlignRight
                    elide: Text.ElideRight
                    Layout.preferredWidth: 150

                    Shotcut.HoverTip {
                        text: parameter.hint
                    }

                }

                Loader {
                    id: editor

                    property var row: line.parameter

                    function changed(value) {
                        line.store(value);
                    }

                    sourceComponent: ({
                        "slider": slider,
                        "choice": choice,
                        "toggle": toggle,
                        "color": color,
                        "text": words
                    })[line.parameter.kind]
                    Layout.fillWidth: true
                }

                Shotcut.UndoButton {
                    onClicked: {
                        panel.setDefault(line.parameter);
                        panel.setControls();
                    }
                }

                Shotcut.KeyframesButton {
                    id: keys

                    visible: line.parameter.animated
                    onToggled: {
                        var moved = filter.keyframeCount(line.parameter.property) > 0;
                        var share = moved ? filter.getDouble(line.parameter.property, panel.getPosition()) : parseFloat(panel.kept(line.parameter));
                        filter.resetProperty(line.parameter.property);
                        if (checked)
                            filter.set(line.parameter.property, share, panel.getPosition());
                        else
                            filter.set(line.parameter.property, share);
                    }
                }

            }

        }

    }

    Connections {
        function onChanged() {
            setControls();
        }

        function onPropertyChanged(name) {
            setControls();
        }

        target: filter
    }

    Connections {
        function onPositionChanged() {
            setControls();
        }

        target: producer
    }

}
