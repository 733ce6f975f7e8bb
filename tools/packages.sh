# Installs what is missing of the named Debian packages, as root or through sudo; says which could not be had, and why.
# Sourced by ./run and ./check.
# shellcheck shell=bash

need_packages() {
  local missing=() package
  for package in "$@"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then missing+=("$package"); fi
  done
  [ ${#missing[@]} -eq 0 ] && return

  local as_root=()
  if [ "$(id -u)" != 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing and there is no sudo to install them: ${missing[*]}" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}" >&2
  local log
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; } \
    >"$log" 2>&1; then
    echo "These packages could not be installed: ${missing[*]}" >&2
    grep -E '^(E|W|Err)' "$log" >&2 || tail -n 20 "$log" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
