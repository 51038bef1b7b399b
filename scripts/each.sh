# To be sourced. each COMMAND ARGUMENT...: runs COMMAND on each argument, as many at a time as there are processors.
# Fails when any of them failed or was killed.
each() {
    local command="$1" argument pid status=0
    local pids=()
    shift
    for argument in "$@"; do
        while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do wait -n || true; done
        "$command" "$argument" &
        pids+=($!)
    done
    for pid in "${pids[@]}"; do wait "$pid" || status=1; done
    return $status
}
