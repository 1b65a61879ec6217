#!/bin/sh
# Lets a fuzzer look for something new: search.sh FUZZER [ARGUMENT...]
seconds=5
if [ -n "${PLEMORA_LONG:-}" ]; then
  seconds=180
fi
exec "$@" -max_total_time=$seconds
