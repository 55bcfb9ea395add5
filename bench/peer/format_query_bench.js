// Times react-querybuilder's formatQuery(query, 'sql') on flat queries of 1k, 10k and 100k rules
// with the mix the library's BM_ReturnWHEREConditionsPeerMix uses: equality, range, starts-with,
// contains, in-list and null tests in turn, 100 rules per field. Prints one JSON object:
// {"rules": {"1000": {"median_ns_per_rule": ..., "runs": [...]}, ...}, "version": "..."}.
'use strict';
const { formatQuery } = require('react-querybuilder');
const { version } = require('react-querybuilder/package.json');

const kOperators = ['=', 'between', 'beginsWith', 'contains', 'in', 'null'];

function buildQuery(count) {
  const rules = [];
  for (let n = 0; n < count; ++n) {
    const operator = kOperators[n % kOperators.length];
    let value = "O'Brien " + n;
    if (operator === 'between') value = [value, 'z' + n];
    if (operator === 'in') value = ['a' + n, 'b', 'c'];
    if (operator === 'null') value = '';
    rules.push({ field: 'Field ' + Math.floor(n / 100), operator, value });
  }
  return { combinator: 'and', rules };
}

function median(values) {
  const sorted = [...values].sort((a, b) => a - b);
  return sorted[Math.floor(sorted.length / 2)];
}

// Repeats the call until at least `minSeconds` passed, `repetitions` times; each repetition gives
// the mean time per rule.
function time(query, count, repetitions, minSeconds) {
  const runs = [];
  for (let r = 0; r < repetitions; ++r) {
    let iterations = 0;
    const start = process.hrtime.bigint();
    let elapsed = 0n;
    do {
      formatQuery(query, 'sql');
      ++iterations;
      elapsed = process.hrtime.bigint() - start;
    } while (Number(elapsed) < minSeconds * 1e9);
    runs.push(Number(elapsed) / iterations / count);
  }
  return runs;
}

const repetitions = Number(process.env.PEER_REPETITIONS || 5);
const result = { peer: 'react-querybuilder formatQuery(query, "sql")', version, rules: {} };
for (const count of [1000, 10000, 100000]) {
  const query = buildQuery(count);
  time(query, count, 1, 0.2);  // warm-up: let the JIT settle
  const runs = time(query, count, repetitions, 0.5);
  result.rules[count] = { median_ns_per_rule: median(runs), runs };
}
console.log(JSON.stringify(result));
