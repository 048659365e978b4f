# Doxygen's input filter. In our headers a docstring stands for all declarations below it up to the next empty line; here each
# of them gets its own copy.
function indentOf(line) { match(line, /^ */); return RLENGTH }
/^ *\/\/\/( |$)/ { doc = wasDoc ? doc "\n" $0 : $0; indent = indentOf($0); wasDoc = 1; print; next }
/friend .*operator==/ { next }
/^ *$/ { doc = "" }
doc != "" && !wasDoc && ended && indentOf($0) == indent && !/^ *([}#]|private:|protected:|public:)/ { print doc }
{ print; wasDoc = 0; ended = /[;}] *(\/\/.*)?$/ }
