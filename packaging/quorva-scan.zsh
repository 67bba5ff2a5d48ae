#compdef quorva-scan
_arguments \
    '*--source=[look there only]:source:(process calendar meeting)' \
    '--json[print one JSON object instead of a table]' \
    '(--self-test)--watch[keep looking, and print what appears and disappears]' \
    '(--watch)--self-test[try each source with a harmless stand-in]' \
    '(-)--version[print the version]' \
    '(- *)'{-h,--help}'[say how it is used]'
