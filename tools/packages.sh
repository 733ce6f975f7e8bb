# SPDX-License-Identifier: Apache-2.0

# Installs the missing ones of the named Debian packages, as root or through sudo, and tells which failed and why. Without
# apt-get it lists the packages and continues: the build names what is really missing.
# Sourced by ./run and ./check.
# shellcheck shell=bash

need_packages() {
  local missing=() package
  for package in "$@"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then missing+=("$package"); fi
  done
  [ ${#missing[@]} -eq 0 ] && return
  if ! command -v apt-get >/dev/null; then
    echo "This system has no apt-get. Needed are, under the names of Debian: $*" >&2
    return
  fi

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
