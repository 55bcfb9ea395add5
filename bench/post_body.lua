-- wrk script: POST the file named by BENCH_BODY, as JSON unless BENCH_TYPE names another type.
wrk.method = "POST"
wrk.headers["Content-Type"] = os.getenv("BENCH_TYPE") or "application/json"
local file = assert(io.open(os.getenv("BENCH_BODY"), "rb"))
wrk.body = file:read("*a")
file:close()
