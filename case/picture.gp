# When entries were last used, by what picture.sql wrote to `activity`.
set terminal svg size 960,420 font 'sans-serif,12' background 'white'
set multiplot layout 2,1
unset key
set border 3 linecolor rgb '#667788'
set tics nomirror out
set yrange [0:3<*]
set title 'Last used, by day'
set xdata time
set timefmt '%Y-%m-%d'
set format x "%d %b\n%Y"
plot 'activity' index 0 using 1:2 with impulses linewidth 3 linecolor rgb '#2f5d8a'
set title 'Last used, by hour of day (UTC)'
set xdata
set format x '%02.0f'
set xtics 3
set style fill solid noborder
set boxwidth 0.8
plot [-0.5:23.5] 'activity' index 1 using 1:2 with boxes linecolor rgb '#2f5d8a'
