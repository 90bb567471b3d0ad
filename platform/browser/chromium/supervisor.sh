# Runs a browser and cleans up after it. Arguments: the browser's profile directory, then its
# command line. Writes the browser's process group to standard output.
# Descriptors: 3 and 4 are the browser's DevTools pipe. The system kills the browser's group when
# the program closes its end of 5, and so when the program ends; and it wakes this group, if it was
# stopped, when nobody holds 6 any more, which is the other end of 7: no program and no browser.
profile=$1
shift
ended=
# Whatever our caller searches: what is called here must be found.
PATH=${PATH:+$PATH:}/usr/bin:/bin
(
  trap 'ended=1; kill -KILL "-$browser" "$browser" 2>/dev/null' HUP TERM
  # What each of its processes may hold, in KiB: markup takes a renderer two hundred times its bytes.
  ulimit -d 4194304 2>/dev/null
  # A session of its own, so that its process group holds all that it starts.
  setsid /bin/sh -c 'echo "$$"; exec "$@" >/dev/null' sh "$@" 7<&- &
  browser=$!
  exec >/dev/null 2>&1 3<&- 4>&- 5<&- 6>&-
  [ "$ended" ] && kill -KILL "-$browser" "$browser"
  while kill -0 "$browser"; do
    wait "$browser"
  done
  trap '' HUP TERM
  kill -KILL "-$browser"
  # Its crash handlers are in sessions of their own; they end with it unless they are stopped.
  for handler in $(grep -ls -e "--database=$profile/" /proc/[0-9]*/cmdline); do
    handler=${handler#/proc/}
    kill -KILL "${handler%/*}"
  done
  # What is being killed may make one more file. The directory itself goes last: as long as it is
  # there, another start looks after it, and after us.
  for attempt in 1 2 3 4 5 6 7 8 9 10; do
    rm -rf -- "$profile"/* "$profile"/.[!.]* && break
    sleep 0.1
  done
  exec rm -rf -- "$profile"
) </dev/null &
