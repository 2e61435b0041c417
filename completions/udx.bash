# Completes the options of udx, and their values where there are few or a path is wanted.
# scripts/check_package.sh holds the options against those of the program.
_udx() {
  local cur prev words cword values
  _init_completion -n : || return
  case ${prev,,} in
    -f | -out | -outfile | -diags) _filedir; return ;;
    -vmdk) _filedir vmdk; return ;;
    -enumdir | -outdir) _filedir -d; return ;;
    -dateformat) values='yyyy-mm-dd mm/dd/yyyy dd/mm/yyyy yy-mm-dd mm/dd/yy dd/mm/yy' ;;
    -timeformat) values='hh:mm:ss hh:mm:ss.xxx hh:mm:ss.xxxxxx hh:mm:ss.xxxxxxxxx' ;;
    -csv_separator) values='tab' ;;
    -filter) values='index.dat' ;;
    -alias | -aliaspath | -cmd_start_time | -cmd_stop_time | -cpu | -cpuinst | -filter_path | \
      -filter_sig | -filter_skip | -fragment_files | -hostname | -num_subdirs | -offset | \
      -partition | -signal | -sqlite | -sqlite_log | -threads | -username | -zlibex) return ;;
    *)
      values='-alias -aliaspath -append -base10 -base16 -bodyfile -cmd_start_time -cmd_stop_time
        -cpu -cpuinst -csv -csv_separator -csvgen -csvl2t -dateformat -diags
        -enable_quoted_csv_fields -enumdir -f -filter -filter_path -filter_sig -filter_skip
        -fragment_files -gzip -h -help --help -hostname -l2 -l3 -locale -multiline -no_whitespace
        -num_subdirs -offset -out -outdir -outfile -pair_datetime -partition -pipe -profile -quiet
        -separate_files -signal -split_pathfile -sqlite -sqlite_log -threads -timeformat -username
        -utf8_bom -v -verbose -vmdk -xml -zlib -zlibex'
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$values" -- "$cur")
  __ltrim_colon_completions "$cur"
} && complete -F _udx udx
