# Completes the commands of udx-case, and paths behind them.
complete -c udx-case -n __fish_is_first_arg -f
complete -c udx-case -n __fish_is_first_arg -l help -d 'show the help'
for command in 'run	search files, folders and disks, and make a case' \
        'load	make a database of your own runs' 'union	all rows of two runs on one image' \
        'body	visits and uses for mactime' 'events	all times as JSON Lines' \
        'sheet	all rows as CSV for spreadsheets' 'report	a page to hand on'
    complete -c udx-case -n __fish_is_first_arg -a "$(string escape -- $command)"
end
