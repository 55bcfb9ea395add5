-- wrk script: POST the file named by BENCH_BODY as JSON.
wrk.method = "POST"
wrk.headers["Content-Type"] = "application/json"
local file = assert(io.open(os.getenv("BENCH_BODY"), "rb"))
wrk.body = file:read("*a")
file:close()
