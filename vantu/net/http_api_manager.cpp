#include "vantu/net/http_api_manager.h"

#include <simdjson.h>

#include "vantu/core/url.h"
#include "vantu/platform/platform.h"
#include "vantu/value/json.h"

namespace vantu {
namespace {

constexpr double kDefaultTimeoutSeconds = 60;

void completeOnMain(HTTPAPIManager::Completion completion, H5OpError error) {
  platform().dispatch->main()->async(
      [completion = std::move(completion), error = std::move(error)] { completion(false, error, std::nullopt); });
}

Bytes bytesOf(std::string_view text) { return Bytes{std::vector<std::uint8_t>(text.begin(), text.end())}; }

/// The header fields when "headers" is a non-empty dictionary whose keys
/// and values are all strings; otherwise nothing (the whole entry is ignored).
std::optional<HeaderFields> headerFieldsOf(const Value* value) {
  const Dict* dict = value ? value->asDict() : nullptr;
  if (!dict || dict->empty()) return std::nullopt;
  HeaderFields fields;
  for (const auto& [key, field] : *dict) {
    const std::string* name = key.string();
    const std::string* text = field.asString();
    if (!name || !text) return std::nullopt;
    fields.emplace_back(*name, *text);
  }
  return fields;
}

}  // namespace

void HTTPAPIManager::performRequest(const Dict& data, Completion completion) {
  ostrixParams.clear();
  start_ = std::chrono::steady_clock::now();

  auto url = data.getString("url");
  if (!url || !Url::parse(*url)) return completeOnMain(std::move(completion), {2, "invalid url"});
  UrlRequest request;
  request.url = *url;
  request.timeoutSeconds = kDefaultTimeoutSeconds;

  auto method = data.getString("method");
  if (!method) return completeOnMain(std::move(completion), {2, "invalid method"});
  request.method = *method;

  if (const Value* body = data.find("data")) {
    if (const Dict* dict = body->asDict(); dict && dict->hasOnlyStringKeys()) {
      request.body = bytesOf(json::write(*dict, {.pretty = true}));
    } else if (const std::string* text = body->asString()) {
      request.body = bytesOf(*text);
    }
  }
  if (auto fields = headerFieldsOf(data.find("headers"))) request.headers = std::move(*fields);
  if (const Value* timeout = data.find("timeout"); timeout && timeout->isInt()) {
    // Whole seconds, truncated: 1500 ms is 1 s and 999 ms is 0 s.
    request.timeoutSeconds = static_cast<double>(*timeout->asInt() / 1000);
  }

  auto transport = platform().httpTransport;
  if (!transport) return completeOnMain(std::move(completion), {12, "error"});
  auto self = shared_from_this();
  transport->start(
      HttpTransfer{request, std::nullopt},
      [self, request, completion = std::move(completion)](HttpTransferResult result) mutable {
        self->transferEnded(request, std::move(result), std::move(completion));
      },
      [self](TaskMetrics metrics) { self->metricsArrived(metrics); });
}

void HTTPAPIManager::transferEnded(const UrlRequest& request, HttpTransferResult result, Completion completion) {
  if (result.error) return completion(false, H5OpError{12, "error"}, std::nullopt);
  if (!result.body) return completion(false, H5OpError{-2, "no data received"}, std::nullopt);

  ostrixParams["urlRequest"] = request;
  if (result.httpResponse) {
    ostrixParams["urlResponse"] = *result.httpResponse;
  } else {
    ostrixParams.erase("urlResponse");
  }
  ostrixParams.erase("error");
  ostrixParams["responseTime"] = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  ostrixParams["responseData"] = *result.body;
  recorded();

  if (!result.httpResponse) return completion(false, H5OpError{-2, "no HTTPresponse received"}, std::nullopt);
  completion(true, std::nullopt, resultOf(*result.httpResponse, *result.body));
}

void HTTPAPIManager::metricsArrived(TaskMetrics metrics) {
  ostrixParams["responseMetrics"] = metrics;
  recorded();
}

void HTTPAPIManager::recorded() {
  if (ostrixParams.size() >= 2 && metrixObtained) metrixObtained(ostrixParams);
}

Dict HTTPAPIManager::resultOf(const HttpUrlResponse& response, const Bytes& body) {
  Dict headers;
  for (const auto& [name, value] : response.headers) headers.set(name, value);
  const auto* text = reinterpret_cast<const char*>(body.data.data());
  const bool utf8 = simdjson::validate_utf8(text, body.data.size());
  std::string headersStr = json::write(headers);
  return Dict{
      {"headers", std::move(headers)},
      {"status", response.statusCode},
      {"data", utf8 ? std::string(text, body.data.size()) : std::string()},
      {"headersStr", std::move(headersStr)},
  };
}

}  // namespace vantu
