#!/usr/bin/env bash
# Installs what is missing, builds, and starts the reference host on its built-in sample scenario.
# Extra arguments go to the host (see README.md or `newsReaderHost --help`).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
host="$root/build/bin/newsReaderHost"
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" && -z "${QT_QPA_PLATFORM:-}" ]]; then
  wants_picture=false
  for argument in "$@"; do
    case "$argument" in
      --screenshot|--screenshot=*|--help|-h|--version) wants_picture=true ;;
    esac
  done
  if [[ "$wants_picture" == false ]]; then
    echo "No display found: the host now runs invisibly under Xvfb until you stop it with Ctrl+C." >&2
    echo "To see it, run this script from a desktop session, or add --screenshot host.png for a picture." >&2
  fi
  exec xvfb-run -a -s "-screen 0 1280x800x24" "$host" "$@"
fi
exec "$host" "$@"
