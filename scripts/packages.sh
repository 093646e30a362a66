# Sourced by ./run and ./test: what the machine must have. Needs $root, the top of the tree.

# packages_of SECTION...: "package check" lines of packaging/debian-packages.txt.
packages_of() {
    awk -v wanted=" $* " '
        /^\[/ { section = substr($1, 2, length($1) - 2); next }
        /^[^#]/ && NF && index(wanted, " " section " ") { print $1, $2 }
    ' "$root/packaging/debian-packages.txt"
}

is_debian() {
    command -v dpkg-query >/dev/null && command -v apt-get >/dev/null
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "Neither root nor sudo: cannot run: $*" >&2
        return 1
    fi
}

# Debian: installs what is missing, and only that.
install_packages() {
    local missing=() package check
    while read -r package check; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done < <(packages_of "$@")
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing ${#missing[@]} Debian packages: ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends \
        -o Dpkg::Use-Pty=0 install "${missing[@]}"
}

# Elsewhere: names what is missing.
name_missing() {
    local missing=() package check
    while read -r package check; do
        case $check in
        -) ;;
        module:*)
            pkg-config --exists "${check#module:}" 2>/dev/null ||
                missing+=("library ${check#module:} (pkg-config; Debian: $package)")
            ;;
        *)
            command -v "$check" >/dev/null || missing+=("command $check (Debian: $package)")
            ;;
        esac
    done < <(packages_of "$@")
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Kestrove needs these, which this system does not have:" >&2
    printf '    %s\n' "${missing[@]}" >&2
    return 1
}

# ensure_packages SECTION...: returns when they are there, else ends the script.
ensure_packages() {
    if is_debian; then
        install_packages "$@" || exit 1
    else
        name_missing "$@" || exit 1
    fi
}
