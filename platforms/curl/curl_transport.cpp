#include "platforms/curl/curl_transport.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <unistd.h>

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <map>

#include "platforms/common/write_all.h"

namespace vantu::curl {
namespace {

constexpr long kDownloadBufferSize = 512 * 1024;
constexpr std::chrono::microseconds kIdleWatch{150};

void initCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

PlatformError urlError(UrlErrorCode code, std::string description, Dict userInfo = {}) {
  return PlatformError{std::string(kUrlErrorDomain), static_cast<std::int64_t>(code), std::move(description),
                       std::nullopt, std::move(userInfo)};
}

PlatformError errorForCurlCode(CURLcode code, const char* detail) {
  Dict info{{"curlCode", static_cast<std::int64_t>(code)}, {"detail", std::string(detail)}};
  switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
      return urlError(UrlErrorCode::timedOut, "The request timed out.", std::move(info));
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return urlError(UrlErrorCode::cannotFindHost, "A server with the specified hostname could not be found.",
                      std::move(info));
    case CURLE_COULDNT_CONNECT:
      return urlError(UrlErrorCode::cannotConnectToHost, "Could not connect to the server.", std::move(info));
    case CURLE_UNSUPPORTED_PROTOCOL:
      return urlError(UrlErrorCode::unsupportedUrl, "unsupported URL", std::move(info));
    case CURLE_URL_MALFORMAT:
      return urlError(UrlErrorCode::badUrl, "bad URL", std::move(info));
    case CURLE_TOO_MANY_REDIRECTS:
      return urlError(UrlErrorCode::tooManyRedirects, "too many HTTP redirects", std::move(info));
    case CURLE_WEIRD_SERVER_REPLY:
      return urlError(UrlErrorCode::badServerResponse, "The server returned a bad response.", std::move(info));
    case CURLE_WRITE_ERROR:
      return urlError(UrlErrorCode::cannotWriteToFile, "The file could not be written.", std::move(info));
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
      return urlError(UrlErrorCode::networkConnectionLost, "The network connection was lost.", std::move(info));
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
      return urlError(UrlErrorCode::secureConnectionFailed,
                      "An SSL error has occurred and a secure connection to the server cannot be made.",
                      std::move(info));
    default:
      return urlError(UrlErrorCode::unknown, curl_easy_strerror(code), std::move(info));
  }
}

// tchar of RFC 9110: what a method or a header name may consist of. Anything
// else (a line break above all) would let a page write its own request lines.
bool isToken(std::string_view s) {
  if (s.empty()) return false;
  for (unsigned char c : s) {
    if (std::isalnum(c) != 0) continue;
    if (std::strchr("!#$%&'*+-.^_`|~", c) == nullptr || c == 0) return false;
  }
  return true;
}

bool isFieldValue(std::string_view s) {
  for (unsigned char c : s) {
    if (c == '\r' || c == '\n' || c == 0) return false;
  }
  return true;
}

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n')) s.remove_suffix(1);
  return s;
}

std::optional<double> seconds(CURL* easy, CURLINFO info) {
  curl_off_t micros = 0;
  if (curl_easy_getinfo(easy, info, &micros) != CURLE_OK || micros <= 0) return std::nullopt;
  return static_cast<double>(micros) / 1e6;
}

TaskMetrics metricsOf(CURL* easy) {
  TaskMetrics m;
  // libcurl measures every phase from the start of the transfer.
  m.domainLookupStart = 0.0;
  m.domainLookupEnd = seconds(easy, CURLINFO_NAMELOOKUP_TIME_T);
  m.connectStart = m.domainLookupEnd;
  m.connectEnd = seconds(easy, CURLINFO_CONNECT_TIME_T);
  if (auto tls = seconds(easy, CURLINFO_APPCONNECT_TIME_T)) {
    m.secureConnectionStart = m.connectEnd;
    m.secureConnectionEnd = tls;
  }
  m.requestStart = seconds(easy, CURLINFO_PRETRANSFER_TIME_T);
  m.responseStart = seconds(easy, CURLINFO_STARTTRANSFER_TIME_T);
  m.responseEnd = seconds(easy, CURLINFO_TOTAL_TIME_T);
  m.totalSeconds = m.responseEnd.value_or(0);
  long requestSize = 0, headerSize = 0, redirects = 0;
  curl_off_t uploaded = 0, downloaded = 0;
  curl_easy_getinfo(easy, CURLINFO_REQUEST_SIZE, &requestSize);
  curl_easy_getinfo(easy, CURLINFO_HEADER_SIZE, &headerSize);
  curl_easy_getinfo(easy, CURLINFO_SIZE_UPLOAD_T, &uploaded);
  curl_easy_getinfo(easy, CURLINFO_SIZE_DOWNLOAD_T, &downloaded);
  curl_easy_getinfo(easy, CURLINFO_REDIRECT_COUNT, &redirects);
  m.bytesSent = requestSize + uploaded;
  m.bytesReceived = headerSize + downloaded;
  m.redirectCount = redirects;
  return m;
}

// A transfer's progress, counted on the worker and reported on the main
// queue. At most one report task is queued at a time: it reads the latest
// count when it runs, so a fast transfer does not flood the main queue.
struct ProgressReports {
  std::function<void(const TransferProgress&)> handler;
  std::atomic<std::int64_t> received{0};
  std::atomic<std::int64_t> total{-1};
  std::atomic<bool> queued{false};
  std::int64_t lastReported = -1;  // main queue only

  void report() {
    queued.store(false);
    const std::int64_t now = received.load();
    if (now == lastReported) return;
    lastReported = now;
    const std::int64_t all = total.load();
    handler(TransferProgress{now, all < 0 ? std::nullopt : std::optional<std::int64_t>(all)});
  }
};

}  // namespace

struct CurlTransport::Job {
  HttpTransfer transfer;
  Completion completion;
  MetricsHandler metrics;
  std::shared_ptr<SerialQueue> main;
  std::shared_ptr<OutstandingWork> work;

  CURL* easy = nullptr;
  curl_slist* headerList = nullptr;
  char errorText[CURL_ERROR_SIZE] = {};
  std::vector<std::uint8_t> body;
  int fd = -1;
  bool writeFailed = false;
  HttpUrlResponse response;
  bool sawStatusLine = false;
  std::shared_ptr<ProgressReports> progress;  // when the transfer asked for it

  ~Job() {
    if (easy) curl_easy_cleanup(easy);
    if (headerList) curl_slist_free_all(headerList);
    discardFile();
  }
  void discardFile() {
    if (fd < 0) return;
    ::close(fd);
    fd = -1;
    ::unlink(transfer.downloadTo->c_str());
  }

  static size_t onBody(char* data, size_t size, size_t count, void* self) {
    auto* job = static_cast<Job*>(self);
    const size_t n = size * count;
    if (job->fd < 0) {
      job->body.insert(job->body.end(), data, data + n);
      return n;
    }
    if (!writeAll(job->fd, data, n)) {
      job->writeFailed = true;
      return 0;  // makes libcurl end the transfer with CURLE_WRITE_ERROR
    }
    if (job->progress) job->countBody(n);
    return n;
  }

  void countBody(size_t n) {
    progress->received.fetch_add(static_cast<std::int64_t>(n));
    // The length counts the bytes on the wire; a compressed body decodes to
    // another size, so its total stays unknown.
    curl_off_t length = -1;
    curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    const bool encoded = std::any_of(response.headers.begin(), response.headers.end(), [](const auto& field) {
      return strcasecmp(field.first.c_str(), "Content-Encoding") == 0 && strcasecmp(field.second.c_str(), "identity") != 0;
    });
    progress->total.store(encoded ? -1 : static_cast<std::int64_t>(length));
    if (!progress->queued.exchange(true)) main->async([reports = progress] { reports->report(); });
  }

  // Keeps the header fields of the last response only (redirects and
  // interim 1xx answers come first); repeated fields are joined with ", ".
  static size_t onHeader(char* data, size_t size, size_t count, void* self) {
    auto* job = static_cast<Job*>(self);
    const std::string_view line(data, size * count);
    if (line.starts_with("HTTP/")) {
      job->response.headers.clear();
      job->sawStatusLine = true;
    } else if (auto colon = line.find(':'); colon != std::string_view::npos && job->sawStatusLine) {
      std::string name(trim(line.substr(0, colon)));
      std::string value(trim(line.substr(colon + 1)));
      auto& fields = job->response.headers;
      auto same = std::find_if(fields.begin(), fields.end(), [&](const auto& f) {
        return strcasecmp(f.first.c_str(), name.c_str()) == 0;
      });
      if (same != fields.end()) {
        same->second += ", " + value;
      } else {
        fields.emplace_back(std::move(name), std::move(value));
      }
    }
    return size * count;
  }

  /// Sets the handle up; an error when the request cannot be sent as given.
  std::optional<PlatformError> prepare(const CurlTransportOptions& options) {
    const UrlRequest& r = transfer.request;
    if (!isToken(r.method)) return urlError(UrlErrorCode::unknown, "The request method is not valid.");
    for (const auto& [name, value] : r.headers) {
      if (!isToken(name) || !isFieldValue(value)) return urlError(UrlErrorCode::unknown, "A request header is not valid.");
      headerList = curl_slist_append(headerList, (name + ": " + value).c_str());
    }
    // libcurl would otherwise hold larger bodies back for a "100 Continue".
    headerList = curl_slist_append(headerList, "Expect:");
    if (transfer.downloadTo) {
      fd = ::open(transfer.downloadTo->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
      if (fd < 0) return urlError(UrlErrorCode::cannotCreateFile, "The file could not be created.");
    }
    easy = curl_easy_init();
    if (!easy) return urlError(UrlErrorCode::unknown, "The transfer could not be set up.");
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_URL, r.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, options.maxRedirects);
    // An answer without a status line is delivered as a response that is
    // not HTTP, not as a transfer error.
    curl_easy_setopt(easy, CURLOPT_HTTP09_ALLOWED, 1L);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, errorText);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headerList);
    const long limit = std::max(1L, std::lround(r.timeoutSeconds));
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, limit);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, limit);
    if (r.method == "HEAD") {
      curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
    } else if (r.method != "GET" || r.body) {
      curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, r.method.c_str());
    }
    if (r.body) {
      curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(r.body->data.size()));
      curl_easy_setopt(easy, CURLOPT_POSTFIELDS, r.body->data.data());
    }
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Job::onBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Job::onHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    if (fd >= 0) curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, kDownloadBufferSize);
    return std::nullopt;
  }

  HttpTransferResult result(CURLcode code) {
    HttpTransferResult out;
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    if (status != 0) {
      char* effective = nullptr;
      curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &effective);
      response.url = effective ? effective : transfer.request.url;
      response.statusCode = status;
      out.httpResponse = std::move(response);
    }
    if (code != CURLE_OK) {
      out.error = errorForCurlCode(code, errorText);
      return out;
    }
    if (fd >= 0) {
      if (::close(fd) != 0) {
        fd = -1;
        ::unlink(transfer.downloadTo->c_str());
        out.error = urlError(UrlErrorCode::cannotWriteToFile, "The file could not be written.");
        return out;
      }
      fd = -1;
      out.file = transfer.downloadTo;
    } else {
      out.body = Bytes{std::move(body)};
    }
    return out;
  }
};

CurlTransport::CurlTransport(std::shared_ptr<Dispatch> dispatch, CurlTransportOptions options)
    : dispatch_(std::move(dispatch)), options_(options), metricsOrder_(options.metricsOrder) {
  initCurlOnce();
  multi_ = curl_multi_init();
}

CurlTransport::~CurlTransport() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  curl_multi_wakeup(static_cast<CURLM*>(multi_));
  if (worker_.joinable()) worker_.join();
  pending_.clear();
  curl_multi_cleanup(static_cast<CURLM*>(multi_));
}

void CurlTransport::doStart(HttpTransfer transfer, Completion completion, MetricsHandler metrics) {
  auto job = std::make_unique<Job>();
  job->transfer = std::move(transfer);
  job->completion = std::move(completion);
  job->metrics = std::move(metrics);
  job->main = dispatch_->main();
  job->work = dispatch_->beginOutstandingWork();
  if (job->transfer.progress) {
    job->progress = std::make_shared<ProgressReports>();
    job->progress->handler = std::move(job->transfer.progress);
  }
  if (job->transfer.request.timeoutSeconds <= 0) {
    HttpTransferResult result;
    result.error = urlError(UrlErrorCode::timedOut, "The request timed out.");
    finish(std::move(job), std::move(result), TaskMetrics{});
    return;
  }
  {
    std::lock_guard lock(mutex_);
    pending_.push_back(std::move(job));
    hasPending_.store(true);
    if (!worker_.joinable()) worker_ = std::thread([this] { run(); });
  }
  // Pairs with the worker's check of `hasPending_` after it sets `polling_`:
  // either it sees the job, or this sees it polling.
  if (polling_.load()) curl_multi_wakeup(static_cast<CURLM*>(multi_));
}

void CurlTransport::finish(std::unique_ptr<Job> job, HttpTransferResult result, TaskMetrics metrics) {
  auto main = std::move(job->main);
  auto work = std::move(job->work);
  Task report = [completion = std::move(job->completion), result = std::move(result)]() mutable {
    completion(std::move(result));
  };
  Task measure = [handler = std::move(job->metrics), metrics] {
    if (handler) handler(metrics);
  };
  job->discardFile();  // a failed download's partial file is gone before its report
  // The reports in one main-queue task (one wake-up of the main thread),
  // in the order the options give; the work token goes with them. The
  // handle is freed here while the main thread reports.
  const bool metricsFirst = metricsOrder_ == MetricsOrder::beforeCompletion;
  main->async([first = metricsFirst ? std::move(measure) : std::move(report),
               last = metricsFirst ? std::move(report) : std::move(measure), work = std::move(work),
               progress = std::move(job->progress)]() mutable {
    if (progress) progress->report();  // the final count, unless reported already
    first();
    last();
  });
}

bool CurlTransport::awaitPending(std::chrono::microseconds limit) const {
  const auto until = std::chrono::steady_clock::now() + limit;
  while (!hasPending_.load(std::memory_order_acquire)) {
    if (std::chrono::steady_clock::now() >= until) return false;
  }
  return true;
}

void CurlTransport::run() {
  auto* multi = static_cast<CURLM*>(multi_);
  std::map<CURL*, std::unique_ptr<Job>> active;
  for (;;) {
    std::deque<std::unique_ptr<Job>> incoming;
    {
      std::lock_guard lock(mutex_);
      if (stopping_) break;
      incoming.swap(pending_);
      hasPending_.store(false, std::memory_order_relaxed);
    }
    for (auto& job : incoming) {
      if (auto error = job->prepare(options_)) {
        HttpTransferResult result;
        result.error = std::move(error);
        finish(std::move(job), std::move(result), TaskMetrics{});
        continue;
      }
      CURL* easy = job->easy;
      curl_multi_add_handle(multi, easy);
      active.emplace(easy, std::move(job));
    }
    int running = 0;
    curl_multi_perform(multi, &running);
    int queued = 0;
    while (CURLMsg* message = curl_multi_info_read(multi, &queued)) {
      if (message->msg != CURLMSG_DONE) continue;
      CURL* easy = message->easy_handle;
      const CURLcode code = message->data.result;
      auto found = active.find(easy);
      curl_multi_remove_handle(multi, easy);
      if (found == active.end()) continue;
      std::unique_ptr<Job> job = std::move(found->second);
      active.erase(found);
      auto result = job->result(code);
      auto metrics = metricsOf(easy);
      finish(std::move(job), std::move(result), metrics);
    }
    // A page often sends its next request as soon as an answer arrives.
    // Waking a sleeping thread costs tens of microseconds, as much as a
    // whole loopback request, so an idle worker watches for new work a
    // little while before it sleeps.
    if (active.empty() && awaitPending(kIdleWatch)) continue;
    polling_.store(true);
    if (!hasPending_.load()) curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
    polling_.store(false);
  }
  for (auto& [easy, job] : active) curl_multi_remove_handle(multi, easy);
}

}  // namespace vantu::curl
