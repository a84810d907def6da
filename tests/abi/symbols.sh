#!/usr/bin/env bash
# Usage: symbols.sh LIBRARY EXPORTS NM READELF
# Holds the built library against the export list and against what it may ask of the platform.
set -u
library=$1 exports=$2 nm=$3 readelf=$4
failures=0
fail() {
  printf 'FAIL: %s\n' "$1"
  [ -n "${2:-}" ] && printf '%s\n' "$2"
  failures=$((failures + 1))
}
# refuse WHAT LINES: fails when there are any lines.
refuse() { [ -z "$2" ] || fail "$1" "$2"; }

listed=$(sed -nE 's/^(hook|function|data) //p' "$exports" | sort)
exported=$("$nm" -D --defined-only "$library" | awk '{print $NF}' | sort)
refuse 'exported names differ from the list (< listed, > exported)' "$(diff <(echo "$listed") <(echo "$exported"))"
refuse 'a name is listed twice' "$(echo "$listed" | uniq -d)"
functions=$(grep -cE '^(hook|function) ' "$exports")
tables=$(sed -n 's/^data //p' "$exports")
[ "$functions $tables" = '75 g_DDSite' ] || fail "the interface is 75 functions and g_DDSite, not $functions and $tables"

# The hooks' own functions, fused multiply-adds where the baseline processor has none, and start-up code.
allowed='malloc|free|atan2|fma|fmaf|__cxa_finalize|__gmon_start__|_ITM_(de)?registerTMCloneTable|__stack_chk_fail'
refuse 'undefined names outside the allow-list' \
  "$("$nm" -D --undefined-only "$library" | awk '{print $NF}' | sed 's/@.*//' | grep -vxE "$allowed")"

dynamic=$("$readelf" -dW "$library")
refuse 'needs more than the C and mathematics libraries' \
  "$(echo "$dynamic" | grep NEEDED | grep -vE '\[(libc|libm)\.so|\[ld-linux')"
echo "$dynamic" | grep -qE 'SONAME.*libquoFPAlg\.so' || fail 'no SONAME'
echo "$dynamic" | grep -qE 'FLAGS.*NOW' || fail 'not bound at load time'
refuse 'relocations in the text' "$(echo "$dynamic" | grep TEXTREL)"

segments=$("$readelf" -lW "$library")
echo "$segments" | grep -q GNU_RELRO || fail 'no RELRO segment'
refuse 'executable stack' "$(echo "$segments" | grep GNU_STACK | grep -E 'RWE')"
refuse 'a segment is not aligned to 16 KiB' "$(echo "$segments" | awk '$1 == "LOAD"' | grep -v '0x4000$')"

# Start-up objects of the tool chain and its choice among function versions bring these; anything else would be state that the library keeps.
startup='__cpu_model|__cpu_features2|__dso_handle|completed\.[0-9]+|__TMC_END__|_edata|__bss_start|_end|__bss_start__|__bss_end__|_bss_end__|__end__|_DYNAMIC|_GLOBAL_OFFSET_TABLE_|__data_start|data_start|object\.[0-9]+|dwarf_eh_object|__FRAME_END__|__frame_dummy_init_array_entry|__do_global_dtors_aux_fini_array_entry'
refuse 'writable data' "$("$nm" --defined-only "$library" | awk '$2 ~ /^[bBD]$/ || $2 == "d" {print $3}' | grep -vxE "$startup")"

[ "$failures" -eq 0 ] && echo "$(echo "$listed" | wc -l) names exported, as listed"
exit "$failures"
