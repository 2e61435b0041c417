# Completes the options of udx, and their values where there are few or a path is wanted.
# scripts/check_package.sh holds the options against those of the program.
complete -c udx -f
complete -c udx -o h -o help -l help -d 'show the help'
complete -c udx -o f -rF -d 'read one file'
complete -c udx -o pipe -d 'read the files whose paths stand on standard input'
complete -c udx -o enumdir -xa '(__fish_complete_directories)' -d 'read the files of a folder'
complete -c udx -o vmdk -rF -d 'search a VMware disk'
complete -c udx -o partition -x -d 'refused in every run'
complete -c udx -o num_subdirs -x -d 'go down so many levels below the folder'
complete -c udx -o filter -xa index.dat -d 'take paths by their names'
complete -c udx -o filter_sig -x -d 'take files that hold these bytes'
complete -c udx -o cmd_start_time -x -d 'take files changed since then'
complete -c udx -o cmd_stop_time -x -d 'no effect for a plain date'
complete -c udx -o bodyfile -d 'separate cells by a bar'
complete -c udx -o xml -d 'no separators and no header line'
complete -c udx -o multiline -d 'no separators'
complete -c udx -o csv_separator -xa tab -d 'what separates the cells'
complete -c udx -o enable_quoted_csv_fields -d 'trim the separator'
complete -c udx -o no_whitespace -d 'remove the blanks of the separator'
complete -c udx -o dateformat -d 'form of dates' \
  -xa 'yyyy-mm-dd mm/dd/yyyy dd/mm/yyyy yy-mm-dd mm/dd/yy dd/mm/yy'
complete -c udx -o timeformat -d 'form of times' \
  -xa 'hh:mm:ss hh:mm:ss.xxx hh:mm:ss.xxxxxx hh:mm:ss.xxxxxxxxx'
complete -c udx -o locale -d 'dates as the locale has them'
for option in out outfile diags
    complete -c udx -o $option -rF -d 'write to a file'
end
complete -c udx -o utf8_bom -d 'begin the results with a byte order mark'
complete -c udx -o quiet -d 'no progress'
complete -c udx -o profile -d 'report the seconds that the run takes'
for option in sqlite sqlite_log
    complete -c udx -o $option -x -d 'ends the run'
end
complete -c udx -o outdir -xa '(__fish_complete_directories)' -d 'no effect'
for option in append base10 base16 csv csvgen csvl2t gzip l2 l3 pair_datetime separate_files \
        split_pathfile v verbose zlib
    complete -c udx -o $option -d 'no effect'
end
for option in alias aliaspath cpu cpuinst filter_path filter_skip fragment_files hostname offset \
        signal threads username zlibex
    complete -c udx -o $option -x -d 'no effect'
end
