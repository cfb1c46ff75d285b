#!/usr/bin/env bash
# clang-tidy on the sources that were changed: since the branch left the default one, on that one by the last commit.
# check_tidy.sh FILE... checks these, check_tidy.sh --all all. Nothing is built.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

most=${KAVRO_TIDY_MOST:-24} # files, as one takes many seconds
cd "$root"

# The commit that this one is compared with; nothing where there is no older one, as in a clone of depth 1.
base() {
    local branch commit
    for branch in origin/HEAD origin/main main; do
        commit=$(git merge-base HEAD "$branch" 2>/dev/null) || continue
        [ "$commit" = "$(git rev-parse HEAD)" ] || { echo "$commit"; return; }
    done
    git rev-parse --quiet --verify HEAD~1 ||
        { GIT_TERMINAL_PROMPT=0 timeout 30 git fetch --quiet --deepen=1 2>/dev/null && git rev-parse --quiet --verify HEAD~1; }
}

# Of a header its source, where there is one of that name.
changed() {
    git diff --name-only --diff-filter=d "$1" -- src tests bench | sed 's/\.h$/.cpp/' | grep '\.cpp$' | sort -u
}

known() {
    local file
    while read -r file; do
        ! grep -q "\"file\": \"$root/$file\"" build-tidy/compile_commands.json || echo "$file"
    done
}

packages+=("${style_packages[@]}" "${test_packages[@]}")
install_missing
prepare tidy
case ${1:-} in
--all) mapfile -t files < <(find src tests bench -name '*.cpp' | sort | known) ;;
"")
    from=$(base) || { echo "Left out: clang-tidy, as this clone has no older commit to compare with."; exit 0; }
    mapfile -t files < <(changed "$from" | known)
    if [ ${#files[@]} -gt "$most" ]; then
        echo "clang-tidy looks at $most of ${#files[@]} changed sources; KAVRO_TIDY_MOST=${#files[@]} at all."
        files=("${files[@]:0:$most}")
    fi
    ;;
*) files=("$@") ;;
esac
[ ${#files[@]} -eq 0 ] || printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build-tidy --quiet 2>/dev/null ||
    fail "clang-tidy complains; see above."
echo "clang-tidy: ${#files[@]} sources."
