# Sourced by the tests in this folder, which are called with the tree as current folder.

say() { printf -- '-- %s\n' "$*"; }

fail() {
    printf '%s: FAILED: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

same() { # WHAT EXPECTED GOT
    [ "$2" = "$3" ] || fail "$1"$'\n'"expected: $2"$'\n'"got:      $3"
}

# A log that is only shown if the command fails.
quietly() { # COMMAND...
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "$*"
    fi
    rm -f "$log"
}

# The folder from which a program takes a library.
folder_of() { # LIBRARY PROGRAM
    local file
    file=$(ldd "$2" | awk -v name="$1" '$1 == name { print $3 }')
    [ -e "$file" ] || fail "$2 finds no $1"
    dirname -- "$(readlink -f -- "$file")"
}

# Runs the example program on a footprint; it must do its whole job.
run_example() { # PROGRAM
    local folder output
    folder=$(mktemp -d)
    quietly tests/support/run-private sh -c '"$1" tests/data/golden/board-tree.xml "$2" >"$2/output" &&
        ls -A /var/lib/devicefootprint >"$2/links"' example "$1" "$folder"
    output=$(cat "$folder/output")
    [[ $output == *"Building a complete instrument"*"latest entry: "* ]] || fail "$1 has not done its job: $output"
    [ -s "$folder/links" ] || fail "$1 has written no link"
    rm -rf "$folder"
}

# Runs the example with rules of its own.
run_own_rules() { # PROGRAM
    local output
    output=$("$1" tests/tool/data/diff/before.xml tests/tool/data/diff/after.xml) || fail "$1: status $?"
    [[ $output == *CNamedDeviceComparator*"a new entry for the history" ]] || fail "$1 has not done its job: $output"
}

build_cmake_consumer() { # BUILD-FOLDER SOURCES [CMAKE ARGUMENT...]
    local build=$1 sources
    sources=$(realpath -- "$2")
    shift 2
    quietly cmake -S tests/packaging/consumer-cmake -B "$build" -DSOURCES="$sources" "$@"
    quietly cmake --build "$build" --parallel "$(nproc)"
}

# Takes the flags from pkg-config alone; further ones are the caller's.
build_pkg_config_consumer() { # PROGRAM SOURCES [FLAG...]
    local program=$1 sources=$2 package=${PACKAGE-nyxconfig}
    shift 2
    # shellcheck disable=SC2046 # flags are words
    quietly g++ -std=c++17 $(pkg-config --cflags "$package") "$sources"/*.cpp -o "$program" \
        $(pkg-config --libs "$package") "$@"
}
