# bash completion for qv5123ctl; made by "qv5123ctl bash-completion".
_qv5123ctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local path="" word words="" files=""
  COMPREPLY=()
  case "$previous" in
    --port)
      COMPREPLY=($(compgen -W "$("$1" ports 2>/dev/null | cut -d' ' -f1)" -- "$current"))
      return ;;
    --base|--description|--field|--firmware|--font|--from|--fw|--journal|--lens|--limits|--log|--metrics|--output|--patches|--records|--samples|--to|--trace|--user|--with|-o)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    --baud|--category|--corners|--data-bits|--expect|--find|--first|--flow|--for|--front-level|--gamma|--memory-weight|--noise-limit|--notes|--pages|--parity|--ratio|--repair|--serial|--step|--stop-bits|--timeout|--width) return ;;
  esac
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case "${path:+$path }$word" in
      "ports"|"reg"|"reg read"|"reg write"|"reg save"|"reg load"|"reg list"|"reg check"|"reg dump"|"send"|"osd"|"osd up"|"osd down"|"osd left"|"osd right"|"osd set"|"osd pattern"|"factory-reset"|"copy-to-factory"|"info"|"info ae"|"info awb"|"page"|"page show"|"page save"|"page diff"|"param"|"param list"|"param get"|"param set"|"param diff"|"settings"|"settings show"|"settings set"|"settings diff"|"settings check"|"settings read"|"download"|"download fw"|"download font"|"download user"|"script"|"replay"|"report"|"monitor"|"flash"|"flash make"|"flash inspect"|"font"|"font export"|"font import"|"font show"|"font diff"|"gamma"|"gamma compute"|"matrix"|"matrix fit"|"matrix measure"|"lsc"|"lsc fit"|"lsc measure"|"awb"|"awb measure"|"provision"|"records"|"records summary")
        path="${path:+$path }$word" ;;
    esac
  done
  case "$path" in
    "") words="ports reg send osd factory-reset copy-to-factory info page param settings download script replay report monitor flash font gamma matrix lsc awb provision records" ;;
    "ports") words="" ;;
    "reg") words="read write save load list check dump" ;;
    "reg read") words="--description --wide --sensor" ;;
    "reg write") words="--wide --sensor" ;;
    "reg save") words="--description --category" files=yes ;;
    "reg load") words="--description" files=yes ;;
    "reg list") words="--description --find" ;;
    "reg check") words="--description" files=yes ;;
    "reg dump") words="" ;;
    "send") words="" ;;
    "osd") words="up down left right set pattern" ;;
    "osd up") words="" ;;
    "osd down") words="" ;;
    "osd left") words="" ;;
    "osd right") words="" ;;
    "osd set") words="" ;;
    "osd pattern") words="" ;;
    "factory-reset") words="--yes" ;;
    "copy-to-factory") words="--yes" ;;
    "info") words="ae awb" ;;
    "info ae") words="" ;;
    "info awb") words="" ;;
    "page") words="show save diff" ;;
    "page show") words="front awb dynamic gamma matrix lsc all" ;;
    "page save") words="--from --verify --repair --lenient front awb dynamic gamma matrix lsc all" ;;
    "page diff") words="--lenient front awb dynamic gamma matrix lsc all" files=yes ;;
    "param") words="list get set diff" ;;
    "param list") words="" ;;
    "param get") words="--from" ;;
    "param set") words="--to --base --verify --repair --lenient" ;;
    "param diff") words="--with --lenient" files=yes ;;
    "settings") words="show set diff check read" ;;
    "settings show") words="" files=yes ;;
    "settings set") words="--lenient" files=yes ;;
    "settings diff") words="" files=yes ;;
    "settings check") words="" files=yes ;;
    "settings read") words="--output --pages --base --lenient" ;;
    "download") words="fw font user" ;;
    "download fw") words="--expect" files=yes ;;
    "download font") words="--expect" files=yes ;;
    "download user") words="--expect --lenient" files=yes ;;
    "script") words="" files=yes ;;
    "replay") words="--dry-run" files=yes ;;
    "report") words="--from --limits --firmware --font --patches --lens --width --field --journal --serial --notes --lenient" files=yes ;;
    "monitor") words="--timestamps --log --for" ;;
    "flash") words="make inspect" ;;
    "flash make") words="--fw --font --user --output --lenient" ;;
    "flash inspect") words="" files=yes ;;
    "font") words="export import show diff" ;;
    "font export") words="--output" files=yes ;;
    "font import") words="--output" files=yes ;;
    "font show") words="" files=yes ;;
    "font diff") words="" files=yes ;;
    "gamma") words="compute" ;;
    "gamma compute") words="--gamma --itu709 --front-level" ;;
    "matrix") words="fit measure" ;;
    "matrix fit") words="--ratio --color-difference --memory-weight --noise-limit" files=yes ;;
    "matrix measure") words="--first --step --corners --ratio --fit --save --send-doubtful" ;;
    "lsc") words="fit measure" ;;
    "lsc fit") words="--ratio --width" files=yes ;;
    "lsc measure") words="--width --ratio --samples --field --save --send-doubtful" ;;
    "awb") words="measure" ;;
    "awb measure") words="" ;;
    "provision") words="--records --metrics --watch --dry-run" files=yes ;;
    "records") words="summary" ;;
    "records summary") words="--csv" files=yes ;;
  esac
  COMPREPLY=($(compgen -W "$words --help --version --port --baud --data-bits --parity --stop-bits --flow --simulate --timeout --json --trace --quiet" -- "$current"))
  if [ -n "$files" ]; then
    compopt -o filenames 2>/dev/null
    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _qv5123ctl qv5123ctl
