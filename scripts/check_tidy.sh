#!/usr/bin/env bash
# clang-tidy on the sources that were changed, the latest first: since the commit in KAVRO_TIDY_BASE, or since the branch
# left the default one, on that one by the last 20 commits. check_tidy.sh FILE... checks these, --all all. Nothing is built.
set -eu
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

most=${KAVRO_TIDY_MOST:-24} # files, as one takes many seconds
last=20                     # commits
cd "$root"

# The commit that this one is compared with; nothing where there is no older one, as in a clone of depth 1.
base() {
    local branch commit
    [ -z "${KAVRO_TIDY_BASE:-}" ] || { git rev-parse --quiet --verify "$KAVRO_TIDY_BASE^{commit}"; return; }
    for branch in origin/HEAD origin/main main; do
        commit=$(git merge-base HEAD "$branch" 2>/dev/null) || continue
        [ "$commit" = "$(git rev-parse HEAD)" ] || { echo "$commit"; return; }
    done
    [ "$(git rev-list --count HEAD)" -gt "$last" ] || GIT_TERMINAL_PROMPT=0 timeout 30 git fetch --quiet --deepen="$last" 2>/dev/null || true
    commit=$(git rev-list --first-parent --max-count=$((last + 1)) HEAD | tail -n 1)
    [ "$commit" != "$(git rev-parse HEAD)" ] && echo "$commit"
}

# Of a header its source, where there is one of that name.
changed() {
    { git diff --name-only HEAD; git log --format= --name-only "$1..HEAD"; } | grep -E '^(src|tests|bench)/' |
        sed 's/\.h$/.cpp/' | awk '/\.cpp$/ && !seen[$0]++'
}

known() {
    local file
    while read -r file; do
        ! grep -qF "\"file\": \"$root/$file\"" build-tidy/compile_commands.json || echo "$file"
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
        left="; left out: $((${#files[@]} - most)) that were changed earlier, which KAVRO_TIDY_MOST=${#files[@]} looks at, too"
        files=("${files[@]:0:$most}")
    fi
    ;;
*) files=("$@") ;;
esac
[ ${#files[@]} -eq 0 ] || printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy -p build-tidy --quiet 2>/dev/null ||
    fail "clang-tidy complains; see above."
echo "clang-tidy: ${#files[@]} sources${left:-}."
