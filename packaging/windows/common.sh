# What the scripts of this folder share: the libraries for Windows that Debian has for Linux alone, made once from Debian's sources
# and kept in a cache. To be sourced after scripts/common.sh.

windows_cache=${XDG_CACHE_HOME:-$HOME/.cache}/tarnwick-windows
windows_prefix=$windows_cache/prefix
windows_toolchain=$PWD/packaging/windows/mingw.cmake
export TARNWICK_WINDOWS_PREFIX=$windows_prefix

# The exit status of a script that can't fetch a source.
windows_unfetched=77

# source_of PACKAGE: fetches and unpacks Debian's source, and sets `source` to its folder. The machine's own list of packages
# stays as it is.
source_of() {
  local place=$windows_cache/sources/$1 apt=$windows_cache/apt
  if [ ! -e "$place/done" ]; then
    say "fetching the source of $1"
    rm -rf "$place"
    mkdir -p "$place" "$apt/lists/partial" "$apt/archives/partial"
    echo 'deb-src http://deb.debian.org/debian bookworm main' >"$apt/sources.list"
    local options=(-qq -o "Dir::Etc::SourceList=$apt/sources.list" -o Dir::Etc::SourceParts=- -o "Dir::State::Lists=$apt/lists"
      -o "Dir::Cache=$apt" -o APT::Sandbox::User=root)
    [ -n "${windows_lists:-}" ] || apt-get "${options[@]}" update || exit "$windows_unfetched"
    windows_lists=fetched
    (cd "$place" && apt-get "${options[@]}" source --download-only "$1") || exit "$windows_unfetched"
    (cd "$place" && mkdir unpacked && tar -x --strip-components=1 -C unpacked -f "$(ls -- *.orig.tar.*)")
    touch "$place/done"
  fi
  source=$place/unpacked
}

# made NAME: whether the library is in the prefix; where not, says that it is made now.
made() {
  [ ! -e "$windows_prefix/made/$1" ] || return 0
  say "making $1 for Windows"
  mkdir -p "$windows_prefix"/{made,lib/pkgconfig,include,share/cmake}
  return 1
}

# describe NAME LIBRARIES: for pkg-config.
describe() {
  printf 'Name: %s\nDescription: for Windows\nVersion: 1\nCflags: -I%s\nLibs: -L%s %s\n' "$1" "$windows_prefix/include" \
    "$windows_prefix/lib" "$2" >"$windows_prefix/lib/pkgconfig/$1.pc"
}

# compile LIBRARY SOURCE...: a static library in the prefix; `compiler` and `flags` say how.
compile() {
  local library=$1 objects=() file
  local work
  work=$(mktemp -d)
  shift
  for file in "$@"; do
    objects+=("$work/$(basename "$file").o")
    "$compiler" -O2 -w "${flags[@]}" -c "$file" -o "${objects[-1]}"
  done
  rm -f "$windows_prefix/lib/lib$library.a"
  x86_64-w64-mingw32-ar rcs "$windows_prefix/lib/lib$library.a" "${objects[@]}"
  rm -rf "$work"
}

# make_libraries: all that the programs without a window and their tests need.
make_libraries() {
  local source compiler flags
  if ! made minizip; then
    source_of minizip
    compiler=x86_64-w64-mingw32-gcc-posix flags=("-I$source")
    compile minizip "$source"/{ioapi,unzip,zip}.c
    mkdir -p "$windows_prefix/include/minizip"
    cp "$source"/{ioapi,unzip,zip}.h "$windows_prefix/include/minizip"
    describe minizip "-lminizip -lz"
    touch "$windows_prefix/made/minizip"
  fi
  if ! made xxhash; then
    cp /usr/include/xxhash.h "$windows_prefix/include"
    compiler=x86_64-w64-mingw32-gcc-posix flags=("-I$windows_prefix/include" -DXXH_STATIC_LINKING_ONLY -DXXH_IMPLEMENTATION)
    echo '#include <xxhash.h>' >"$windows_prefix/xxhash.c"
    compile xxhash "$windows_prefix/xxhash.c"
    rm "$windows_prefix/xxhash.c"
    describe libxxhash -lxxhash
    touch "$windows_prefix/made/xxhash"
  fi
  if ! made pugixml; then
    source_of pugixml
    make_with_cmake "$source"
    touch "$windows_prefix/made/pugixml"
  fi
  # Headers alone, the same on every system.
  if ! made CLI11; then
    cp -r /usr/include/CLI "$windows_prefix/include"
    cp -r "$(dirname "$(dpkg -L libcli11-dev | grep CLI11Config.cmake$)")" "$windows_prefix/share/cmake/CLI11"
    touch "$windows_prefix/made/CLI11"
  fi
  if ! made nlohmann_json; then
    cp -r /usr/include/nlohmann "$windows_prefix/include"
    cp -r "$(dirname "$(dpkg -L nlohmann-json3-dev | grep nlohmann_jsonConfig.cmake$)")" "$windows_prefix/share/cmake/nlohmann_json"
    touch "$windows_prefix/made/nlohmann_json"
  fi
}

# make_with_cmake SOURCE [OPTION...]: builds and installs into the prefix.
make_with_cmake() {
  local work log
  work=$(mktemp -d)
  log=$work.log
  { cmake -G Ninja -S "$1" -B "$work" "-DCMAKE_TOOLCHAIN_FILE=$windows_toolchain" "-DTARNWICK_WINDOWS_PREFIX=$windows_prefix" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF "-DCMAKE_INSTALL_PREFIX=$windows_prefix" "${@:2}" &&
    cmake --build "$work" && cmake --install "$work"; } >"$log" 2>&1 || { tail -n 40 "$log"; rm -rf "$work" "$log"; return 1; }
  rm -rf "$work" "$log"
}

# make_test_library: GoogleTest, which only the tests need.
make_test_library() {
  if ! made googletest; then
    make_with_cmake /usr/src/googletest
    touch "$windows_prefix/made/googletest"
  fi
}

# make_qt: what the viewer needs of Qt, its DLLs and plug-ins. Takes 17 minutes on two cores, once.
make_qt() {
  local source feature options=()
  if ! made qt; then
    source_of qt6-base
    for feature in network sql dbus xml testlib printsupport concurrent tabletevent vulkan icu zstd glib \
      system_{zlib,png,jpeg,freetype,harfbuzz,pcre2}; do
      options+=("-DFEATURE_$feature=OFF")
    done
    make_with_cmake "$source" -DBUILD_SHARED_LIBS=ON -DQT_HOST_PATH=/usr \
      -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF \
      -DINPUT_opengl=desktop "${options[@]}"
    mkdir -p "$windows_prefix/licences"
    cp "$source"/LICENSES/{LGPL-3.0-only,GPL-3.0-only}.txt "$windows_prefix/licences"
    touch "$windows_prefix/made/qt"
  fi
}

# start_wine: makes a prefix of wine's at WINEPREFIX. Its server stays to the end: one that ends while the next program starts makes
# that program fail.
start_wine() {
  mkdir "$WINEPREFIX"
  timeout 20 wineserver -p || return 1
  timeout 120 wineboot -i >/dev/null 2>&1 || timeout 120 wineboot -i >/dev/null 2>&1
}
