#!/usr/bin/env bash
# Puts the HTTP library's two source files into a folder (default: .deps/mongoose).
#
# Debian 12 has no binary package of the library's 6 series, but carries its sources inside a
# source package. They are fetched with the ordinary package client and a private configuration: the
# machine's own sources plus the deb-src type, for this one call. The machine's configuration and
# package lists stay as they are. Does nothing when the right files are already there.
# shellcheck source=scripts/common.sh
. "$(dirname -- "$(readlink -f -- "$0")")/common.sh"
# shellcheck source=scripts/watched.sh
. "$root/scripts/watched.sh"

dest=$(realpath -m -- "${1:-$root/.deps/mongoose}")
package=rtl-433
version=22.11-1
sums="4229f2f7a67c03aa6bd991841c0e2961673b8af9cea61cfb887f8866d93fa25a  mongoose.c
a5ab1598fef30106aba85e55c900a29176d8a42d2dbfb24f6d10775926ecc9ad  mongoose.h"

sums_match() {
  (cd "$1" 2>/dev/null && echo "$sums" | sha256sum --check --status 2>/dev/null)
}

if sums_match "$dest"; then
  exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/parts" "$work/lists/partial" "$work/cache/archives/partial"
: >"$work/sources.list"

# One-line sources get a deb-src twin, deb822 sources a second type.
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
  [ -f "$list" ] || continue
  sed -n -e 's/^[[:space:]]*deb[[:space:]]/deb-src /p' "$list" >>"$work/sources.list"
done
for list in /etc/apt/sources.list.d/*.sources; do
  [ -f "$list" ] || continue
  sed -e 's/^Types:.*/Types: deb-src/' "$list" >"$work/parts/${list##*/}"
done

private_apt() {
  apt-get -q -o Dir::Etc::sourcelist="$work/sources.list" -o Dir::Etc::sourceparts="$work/parts" \
    -o Dir::State::Lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User=root "$@"
}

# A third-party source without deb-src only causes a warning; the download below is what counts.
say "downloading the sources of the HTTP library"
cd "$work"
watched update.log private_apt update || true
watched source.log private_apt source --download-only "$package=$version" ||
  fail "cannot download the source package $package $version: $(cause_in update.log source.log)"

mkdir "$work/out"
tar -xf "$work"/*.orig.tar.* -C "$work/out" --strip-components=2 --wildcards \
  '*/src/mongoose.c' '*/include/mongoose.h' || fail "cannot unpack the source package"
sums_match "$work/out" || fail "the downloaded files have the wrong SHA-256"

# Moved into place by one rename each, so that an interrupted run leaves no partial file.
mkdir -p "$dest"
for file in mongoose.c mongoose.h; do
  cp "$work/out/$file" "$dest/.$file.new"
  mv "$dest/.$file.new" "$dest/$file"
done
