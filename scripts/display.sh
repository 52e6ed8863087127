# shellcheck shell=bash
# The virtual displays of ./test: Xvfb with a window manager, and the end of everything that ./test has started.

tests_pid=
display_pids=()
session=

# start_display: sets DISPLAY once a window manager runs on a display of its own, and HOME to a folder that belongs to it.
# Homes and caches are the session's, so that neither the user's settings reach the tests nor the tests' settings the user.
# The displays of a session lie in $session/displays, each as a folder named by its number.
start_display() {
  if [[ -z $session ]]; then
    session=$(mktemp -d)
    mkdir "$session/displays"
    mkfifo "$session/number"
  fi

  # -displayfd lets the server choose a free display, so that two runs never meet. The kernel ends it (and so every window
  # on it) should this shell be killed outright.
  setpriv --pdeathsig TERM Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset \
    3>"$session/number" >"$session/xvfb.log" 2>&1 &
  display_pids=($! "${display_pids[@]}")
  local number
  if ! read -r -t 30 number <"$session/number"; then
    cat "$session/xvfb.log" >&2
    die "the virtual display did not start"
  fi

  export DISPLAY=:$number HOME=$session/displays/$number/home LIBGL_ALWAYS_SOFTWARE=1
  mkdir -p "$HOME"
  unset WAYLAND_DISPLAY XAUTHORITY XDG_CACHE_HOME XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME
  openbox --sm-disable --config-file scripts/openbox.xml >"$session/openbox.log" 2>&1 &
  display_pids=($! "${display_pids[@]}")
  local tries
  for ((tries = 0; tries < 300; ++tries)); do
    if xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q '#'; then return; fi
    sleep 0.1
  done
  cat "$session/openbox.log" >&2
  die "the window manager did not start"
}

# end_by_signals: has this shell run what it is to do on EXIT when a signal ends it.
end_by_signals() {
  trap 'exit 129' HUP
  trap 'exit 130' INT
  trap 'exit 143' TERM
}

# stop_all: ends the tests (with all they started), window managers and servers. Harmless at any moment.
stop_all() {
  trap '' HUP INT TERM
  if [[ -n $tests_pid ]]; then kill -TERM -- "-$tests_pid" 2>/dev/null || true; fi
  local pid
  for pid in "${display_pids[@]}"; do
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  if [[ -n $session ]]; then rm -rf "$session"; fi
}

# run_on_displays count command...: starts displays and runs the command on them, in a process group of its own, so that
# stop_all reaches it and what it has started. Its status. RELIEVO_TEST_DISPLAYS tells windowed tests where to find one
# that no other test uses.
run_on_displays() {
  local count=$1
  shift
  trap stop_all EXIT
  end_by_signals
  local i
  for ((i = 0; i < count; ++i)); do start_display; done
  export RELIEVO_TEST_DISPLAYS=$session/displays

  set -m
  "$@" &
  tests_pid=$!
  set +m
  local status=0
  wait "$tests_pid" || status=$?
  return "$status"
}
