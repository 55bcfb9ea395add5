// The HTTP side of brixq serve: routes of the JSON API, the envelope endpoint and the page,
// with the token check, the body limit, timeouts and one log line per request.
#pragma once

#include <httplib.h>

#include <memory>
#include <string>

#include "tools/catalog_service.h"
#include "tools/failure_reporter.h"
#include "tools/rpc_service.h"
#include "tools/serve_options.h"

namespace brix::brixq {

class ApiServer {
 public:
  /// `token` empty: writes are open (the caller keeps the server on loopback).
  ApiServer(const ServeOptions& options, CatalogStore& store, std::string token);

  /// Binds to the options' address; returns the port bound (the free one picked for port 0).
  /// Raises `std::runtime_error` when the address cannot be bound.
  int Bind();
  /// Serves until `Stop`; requests in flight finish first.
  void Run();
  void Stop();

 private:
  using Request = httplib::Request;
  using Response = httplib::Response;
  void Routes();
  void Handle(const Request& request, Response& response,
              void (ApiServer::*handler)(const Request&, Response&));
  void Render(const Request& request, Response& response);
  void ListQueries(const Request& request, Response& response);
  void GetQuery(const Request& request, Response& response);
  void PutQuery(const Request& request, Response& response);
  void DeleteQuery(const Request& request, Response& response);
  void Clauses(const Request& request, Response& response);
  void Version(const Request& request, Response& response);
  void Samples(const Request& request, Response& response);
  void Rpc(const Request& request, Response& response);
  bool MayWrite(const Request& request) const;
  void RequireWrite(const Request& request) const;
  std::string User(const Request& request) const;

  const ServeOptions& options_;
  CatalogStore& store_;
  std::string token_;
  FailureReporter reporter_;
  CatalogService catalog_;
  RpcService rpc_;
  httplib::Server server_;
};

}  // namespace brix::brixq
