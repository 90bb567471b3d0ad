# Runs a browser and cleans up after it, whoever goes first: the browser, or the program that
# started it. Arguments: the browser's profile directory, then its command line.
# Descriptors: 3 and 4 are the browser's DevTools pipe; 5 ends when the program does, or when it
# is done with the browser.
profile=$1
shift
# Whatever our caller searches: what is called here must be found.
PATH=${PATH:+$PATH:}/usr/bin:/bin
(
  # A session of its own, so that its process group holds all that it starts.
  setsid "$@" 5<&- &
  browser=$!
  exec 3<&- 4>&- 2>/dev/null
  (
    read -r _ <&5
    turns=0
    while [ "$turns" -lt 20 ] && kill -0 "$browser"; do
      sleep 0.1
      turns=$((turns + 1))
    done
    kill -KILL "-$browser"
  ) &
  watcher=$!
  exec 5<&-
  wait "$browser"
  kill -KILL "-$browser"
  kill -KILL "$watcher"
  for attempt in 1 2 3 4 5 6 7 8 9 10; do
    rm -rf -- "$profile"
    [ -e "$profile" ] || break
    sleep 0.1
  done
) </dev/null >/dev/null &
