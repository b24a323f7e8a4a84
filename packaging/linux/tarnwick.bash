# Completion of the programs for bash.

_tarnwick_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "${COMP_WORDS[COMP_CWORD]}")
}

# Folders, and files of the kinds that can be loaded, with "any" also those that can be prepared. compgen expands a ~, a
# test doesn't.
_tarnwick_files() {
  local path which=${1:-}
  mapfile -t COMPREPLY < <(compgen -d -- "${COMP_WORDS[COMP_CWORD]}")
  compopt -o filenames
  while IFS= read -r path; do
    case "${path,,}" in
      *.stp | *.stpz | *.stpx | *.stpxz | *.stpj | *.stpa) COMPREPLY+=("$path") ;;
      *.step | *.p21 | *.xml | *.stp.* | *.step.* | *.p21.* | *.stpx.*) [ -z "$which" ] || COMPREPLY+=("$path") ;;
    esac
  done < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
}

_tarnwick() {
  case ${COMP_WORDS[COMP_CWORD]} in
    -*) _tarnwick_words "--resident --help --version" ;;
    *) _tarnwick_files ;;
  esac
}

_tarnwick_load() {
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --depth | --repeat) COMPREPLY=() && return ;;
    --json) compopt -o default && COMPREPLY=() && return ;;
  esac
  case ${COMP_WORDS[COMP_CWORD]} in
    -*) _tarnwick_words "--json --arrays --depth --no-threads --repeat --index --entities --check --verbose --help --version" ;;
    *) _tarnwick_files ;;
  esac
}

_tarnwick_picture() {
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --view) _tarnwick_words "front back left right top bottom iso iso,front,top" && return ;;
    --background) _tarnwick_words "transparent white black" && return ;;
    --samples) _tarnwick_words "1 4 9 16" && return ;;
    --size) _tarnwick_words "128 256 512x512 1024x768 1920x1080" && return ;;
    --rotate | --turntable | --depth | --pick | --time-limit | --size-limit) COMPREPLY=() && return ;;
    -o | --output) compopt -o default && COMPREPLY=() && return ;;
  esac
  case ${COMP_WORDS[COMP_CWORD]} in
    -*) _tarnwick_words "--output --size --view --rotate --turntable --wireframe --depth --background --samples --fit --no-fit --pick --prepare --time-limit --size-limit --help --version" ;;
    *) _tarnwick_files ;;
  esac
}

_tarnwick_make() {
  local kind=${COMP_WORDS[1]} mesh="--kind --normals --shared-coordinates --pnindex"
  if [ "$COMP_CWORD" = 1 ]; then
    _tarnwick_words "part assembly fem stpx stpa stpj --help --version"
    return
  fi
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --kind) _tarnwick_words "faces fans sets strips" && return ;;
    --normals) _tarnwick_words "all none one" && return ;;
    --route) _tarnwick_words "direct documents" && return ;;
    --shape) _tarnwick_words "bolt bracket flange gear plate shaft washer" && return ;;
  esac
  local options="--help --seed"
  local machine="--parts --uses --depth --triangles-per-part"
  case $kind in
    part) options+=" --triangles --faces --solids --shape --machine --name $mesh --colours --transparent --material --compress" ;;
    assembly) options+=" $machine $mesh --compress --one-missing" ;;
    fem) options+=" --quads --compress" ;;
    stpx) options+=" $machine $mesh --documents --route --no-parts --compress" ;;
    stpa) options+=" $machine $mesh --documents --route --no-parts --stored-documents" ;;
    stpj) options+=" $machine --occurrences" ;;
  esac
  case ${COMP_WORDS[COMP_CWORD]} in
    -*) _tarnwick_words "$options" ;;
    *) compopt -o default && COMPREPLY=() ;;
  esac
}

_tarnwick_open() {
  case ${COMP_WORDS[COMP_CWORD]} in
    -*) _tarnwick_words "--path --help --version" ;;
    *) _tarnwick_files any ;;
  esac
}

_tarnwick_prepare() {
  case ${COMP_WORDS[COMP_CWORD - 1]} in
    --deflection | --angle | --jobs | --time-limit) COMPREPLY=() && return ;;
    --json) compopt -o default && COMPREPLY=() && return ;;
    -o | --output) compopt -o filenames && mapfile -t COMPREPLY < <(compgen -d -- "${COMP_WORDS[COMP_CWORD]}") && return ;;
  esac
  case ${COMP_WORDS[COMP_CWORD]} in
    -*) _tarnwick_words "--output --deflection --angle --jobs --time-limit --force --compress --json --help --version" ;;
    *) _tarnwick_files any ;;
  esac
}

complete -F _tarnwick tarnwick
complete -F _tarnwick_load tarnwick-load
complete -F _tarnwick_picture tarnwick-picture
complete -F _tarnwick_make tarnwick-make
complete -F _tarnwick_open tarnwick-open
complete -F _tarnwick_prepare tarnwick-prepare
