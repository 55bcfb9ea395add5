// The peer of brixq serve's render endpoint: node's own http module answering POST /api/render
// with react-querybuilder's formatQuery(query, 'sql') of the posted {"query": ...}. Prints
// "peer: listening on http://127.0.0.1:PORT/" when ready.
'use strict';
const http = require('http');
const { formatQuery } = require('react-querybuilder');

function answer(res, status, body) {
  const text = JSON.stringify(body);
  res.writeHead(status, { 'Content-Type': 'application/json',
                          'Content-Length': Buffer.byteLength(text) });
  res.end(text);
}

const server = http.createServer((req, res) => {
  if (req.method !== 'POST' || req.url !== '/api/render') {
    answer(res, 404, { error: 'there is nothing at this path' });
    return;
  }
  const chunks = [];
  req.on('data', (chunk) => chunks.push(chunk));
  req.on('end', () => {
    try {
      const body = JSON.parse(Buffer.concat(chunks).toString('utf8'));
      answer(res, 200, { sql: formatQuery(body.query, 'sql') });
    } catch (error) {
      answer(res, 400, { error: String(error) });
    }
  });
});
server.keepAliveTimeout = 5000;
server.listen(0, '127.0.0.1', () => {
  console.log(`peer: listening on http://127.0.0.1:${server.address().port}/`);
});
