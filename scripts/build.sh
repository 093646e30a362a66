# Sourced by ./run and ./test: configure and build a preset. Needs $root.

# build_preset PRESET: quiet as long as all goes well.
build_preset() {
    local preset=$1 log=$root/build/$1.configure.log
    mkdir -p "$root/build"
    echo "== $preset: configure and build"
    if ! (cd "$root" && cmake --preset "$preset" >"$log" 2>&1); then
        cat "$log" >&2
        return 1
    fi
    (cd "$root" && cmake --build --preset "$preset" --parallel "$(nproc)")
}
