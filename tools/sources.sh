# shellcheck shell=sh
# For scripts that ask git about the sources, to be sourced at the project's root.

refuse() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# ask_git ARGUMENT...: what git prints. When it refuses, in a folder of another user for instance,
# the script ends with its reason.
ask_git() {
    command -v git >/dev/null || refuse "git is missing: apt-get install git"
    git --no-optional-locks "$@" 2>/dev/null || refuse "git cannot read this folder: $(
        git --no-optional-locks "$@" 2>&1 >/dev/null | sed -n 's/^fatal: //p' | head -n 1)"
}

# The commit, with "-dirty" when the files are not those of the commit.
sources_commit() {
    commit=$(ask_git rev-parse HEAD)
    changes=$(ask_git status --porcelain)
    echo "$commit${changes:+-dirty}"
}
