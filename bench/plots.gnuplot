# Plots of what ./dev bench wrote: gnuplot -e "data='<folder of tables>'; out='<folder of plots>'" plots.gnuplot

set terminal svg size 800,380 dynamic font "sans-serif,13" background "white"
set datafile separator comma
set grid ytics lt 1 lw 1 lc rgb "#dddddd"
set border 3
set autoscale xfix
set tics nomirror out
set key outside right top reverse Left noenhanced
set style line 1 lw 2 pt 7 ps 0.6 lc rgb "#1f4e8c"
set style line 2 lw 2 pt 7 ps 0.6 lc rgb "#e4572e"
set style line 3 lw 2 pt 5 ps 0.6 lc rgb "#8aa9cf" dt 2
set style line 4 lw 2 pt 5 ps 0.6 lc rgb "#f2a88f" dt 2
set style line 5 lw 1 pt 6 ps 0.5 lc rgb "#777777" dt 3
set ylabel "milliseconds a frame, effect alone"
file(name) = data . "/" . name . ".csv"

set output out . "/lines.svg"
set xlabel "lines of each direction"
set logscale xy
plot file("growth_lines") using 1:2 with linespoints ls 1 title "fast", \
     "" using 1:3 with linespoints ls 3 title "plain", \
     "" using 1:4 with linespoints ls 5 title "host's part"

set output out . "/width.svg"
set xlabel "normal line width, pixels"
plot file("growth_width") using 1:2 with linespoints ls 1 title "blended", \
     "" using 1:3 with linespoints ls 2 title "one colour", \
     "" using 1:4 with linespoints ls 3 title "plain, blended", \
     "" using 1:5 with linespoints ls 4 title "plain, one colour", \
     "" using 1:6 with linespoints ls 5 title "host's part"

set output out . "/size.svg"
set xlabel "megapixels of the frame"
plot file("growth_size") using 1:2 with linespoints ls 1 title "4 + 4 lines", \
     "" using 1:3 with linespoints ls 2 title "20 + 20 lines", \
     "" using 1:4 with linespoints ls 3 title "plain, 4 + 4 lines", \
     "" using 1:5 with linespoints ls 4 title "plain, 20 + 20 lines", \
     "" using 1:6 with linespoints ls 5 title "host's part, 4 + 4 lines"

set output out . "/frame.svg"
set xlabel "frame number + 1"
plot file("growth_frame") using ($1+1):2 with linespoints ls 1 title "lines that grow", \
     "" using ($1+1):3 with linespoints ls 2 title "endless lines", \
     "" using ($1+1):4 with linespoints ls 3 title "plain, lines that grow", \
     "" using ($1+1):5 with linespoints ls 4 title "plain, endless lines", \
     "" using ($1+1):6 with linespoints ls 5 title "host's part, lines that grow"

set output out . "/turbulence.svg"
set xlabel "turbulence"
unset logscale
set yrange [0:*]
plot file("growth_turbulence") using 1:2 with linespoints ls 1 title "fast", \
     "" using 1:3 with linespoints ls 3 title "plain", \
     "" using 1:4 with linespoints ls 5 title "host's part"

# The row of titles is place 0.
set style data histogram
set style histogram clustered gap 1
set style fill solid noborder
set logscale y
set yrange [*:*]
unset xlabel
set xtics noenhanced rotate by -20

set output out . "/strokes.svg"
set xrange [0.4:5.6]
set ylabel "milliseconds a scene"
plot file("strokes") using 2:xtic(1) lc rgb "#1f4e8c" title "ours, one colour", \
     "" using 3 lc rgb "#6f9bd1" title "ours, per sample", \
     "" using 6 lc rgb "#e4572e" title "AGG fill", \
     "" using 8 lc rgb "#f2a88f" title "AGG stroke", \
     "" using 5 lc rgb "#2a9d5c" title "Cairo fill", \
     "" using 4 lc rgb "#94cfac" title "Cairo stroke"

set output out . "/frames.svg"
set xrange [0.4:9.6]
set ylabel "milliseconds a frame, effect alone"
plot file("frames") using 2:xtic(1) lc rgb "#1f4e8c" title "fast", \
     "" using 3 lc rgb "#8aa9cf" title "plain"
