# Sourced by the scripts in scripts/: answers --help with the script's header comment and
# --version with the project's version (from CMakeLists.txt), and exits; returns for any
# other first argument. Nothing is built or installed on the way.
#   answer_help_or_version "$0" "${1:-}"
answer_help_or_version() {
    local script=$1 first=${2:-}
    case "$first" in
        -h | --help)
            # The comment block under the "#!" line, without its "# ".
            sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$script"
            exit 0
            ;;
        --version)
            local root version
            root=$(cd "$(dirname "$script")/.." && pwd)
            version=$(sed -n 's/^project([A-Za-z]* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
            echo "$(basename "$script") ${version:-unknown}"
            exit 0
            ;;
    esac
}
