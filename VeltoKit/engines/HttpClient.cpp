#include "VeltoKit/engines/HttpClient.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <new>
#include <optional>
#include <vector>

#include <curl/curl.h>

namespace velto {

namespace {

constexpr char userAgent[] = "VeltoMKV/" VELTO_VERSION;
// Idle connections kept for reuse; transfers finishing beyond this many close theirs.
constexpr std::size_t maxIdleChannels = 16;

void initialiseCurlOnce() {
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK)
        throw std::bad_alloc();
}

class HeaderList {
public:
    explicit HeaderList(const QList<std::pair<QByteArray, QByteArray>>& headers) {
        for (const auto& [name, value] : headers)
            append(name + ": " + value);
        // Large bodies would otherwise wait for a "100 Continue" round trip.
        append("Expect:");
    }
    ~HeaderList() { curl_slist_free_all(m_list); }
    HeaderList(const HeaderList&) = delete;
    HeaderList& operator=(const HeaderList&) = delete;

    curl_slist* get() const { return m_list; }

private:
    void append(const QByteArray& line) {
        curl_slist* grown = curl_slist_append(m_list, line.constData());
        if (!grown)
            throw std::bad_alloc();
        m_list = grown;
    }

    curl_slist* m_list = nullptr;
};

// Where a transfer puts what arrives, and how much it may take.
struct Arrival {
    HttpResponse& response;
    qsizetype maxBytes;
};

size_t appendToBody(char* data, size_t size, size_t count, void* target) {
    auto* arrival = static_cast<Arrival*>(target);
    const qsizetype bytes = qsizetype(size * count);
    // Anything but `bytes` ends the transfer with a write error: only this callback makes one.
    if (arrival->response.body.size() + bytes > arrival->maxBytes)
        return 0;
    arrival->response.body.append(data, bytes);
    return size * count;
}

size_t readHeader(char* data, size_t size, size_t count, void* target) {
    const QByteArray line = QByteArray(data, qsizetype(size * count));
    // A redirect's headers are not the answer's.
    if (line.startsWith("HTTP/"))
        static_cast<Arrival*>(target)->response.retryAfter.clear();
    const qsizetype colon = line.indexOf(':');
    if (colon > 0 && line.left(colon).trimmed().toLower() == "retry-after")
        static_cast<Arrival*>(target)->response.retryAfter = line.mid(colon + 1).trimmed();
    return size * count;
}

QString megabytes(qsizetype bytes) {
    return QString::number(double(bytes) / (1024 * 1024), 'g', 3).replace(u'.', u',');
}

QString placeOf(const QUrl& url) {
    return url.port() == -1 ? url.host() : url.host() + u':' + QString::number(url.port());
}

QString secondsText(double seconds) {
    return QString::number(seconds, 'g', 4).replace(u'.', u',');
}

HttpError transportError(CURLcode code, const HttpRequest& request) {
    using Kind = HttpError::Kind;
    const QString place = placeOf(request.url);
    switch (code) {
    case CURLE_COULDNT_CONNECT:
        return {Kind::cannotConnect, QStringLiteral("No se pudo conectar con el servidor ") +
                                         place +
                                         QStringLiteral(". Revisá la dirección y tu conexión.")};
    case CURLE_COULDNT_RESOLVE_PROXY:
        return {Kind::cannotConnect,
                QStringLiteral("No se encontró el proxy configurado en el sistema para llegar a ") +
                    place + u'.'};
    case CURLE_COULDNT_RESOLVE_HOST:
        return {Kind::unknownHost,
                QStringLiteral("No se encontró el servidor ") + place +
                    QStringLiteral(". Revisá la dirección y tu conexión a internet.")};
    case CURLE_OPERATION_TIMEDOUT:
        return {Kind::timedOut, QStringLiteral("El servidor ") + place +
                                    QStringLiteral(" no respondió dentro del límite de ") +
                                    secondsText(request.timeoutSeconds) +
                                    QStringLiteral(" segundos.")};
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CACERT_BADFILE:
        return {Kind::insecure,
                QStringLiteral("No se pudo establecer una conexión segura con ") + place +
                    QStringLiteral(". Revisá la fecha y hora del sistema y tu red.")};
    case CURLE_WRITE_ERROR:
    case CURLE_FILESIZE_EXCEEDED:
        return {Kind::tooLarge, QStringLiteral("La respuesta de ") + place +
                                    QStringLiteral(" pasó de ") +
                                    megabytes(request.maxAnswerBytes) +
                                    QStringLiteral(" MB, mucho más de lo que necesita un lote de "
                                                   "subtítulos, así que la dejé de leer.")};
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_WEIRD_SERVER_REPLY:
        return {Kind::interrupted, QStringLiteral("Se cortó la conexión con ") + place +
                                       QStringLiteral(" antes de recibir la respuesta completa.")};
    default:
        return {Kind::other, QStringLiteral("Falló la comunicación con ") + place +
                                 QStringLiteral(" (error de red ") + QString::number(int(code)) +
                                 QStringLiteral(").")};
    }
}

} // namespace

QString HttpResponse::text(int maxCharacters) const {
    const QString whole = QString::fromUtf8(body);
    int cut = std::min<int>(maxCharacters, int(whole.size()));
    if (cut > 0 && cut < whole.size() && whole.at(cut - 1).isHighSurrogate())
        --cut;
    return whole.left(cut);
}

HttpError::HttpError(Kind kind, QString description)
    : VeltoError(std::move(description))
    , m_kind(kind) {}

bool isHttpAddress(const QUrl& url) {
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == u"http" || scheme == u"https") && !url.host().isEmpty();
}

QString trimBaseAddress(QStringView text) {
    const auto isTrimmed = [](QChar c) { return c.isSpace() || c == u'/'; };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isTrimmed(text.at(begin)))
        ++begin;
    while (end > begin && isTrimmed(text.at(end - 1)))
        --end;
    return text.sliced(begin, end - begin).toString();
}

// DNS answers and TLS sessions, shared by every transfer under one lock per kind of data.
struct HttpClient::Share {
    CURLSH* handle = nullptr;
    std::array<std::mutex, CURL_LOCK_DATA_LAST> locks;

    Share()
        : handle(curl_share_init()) {
        if (!handle)
            throw std::bad_alloc();
        curl_share_setopt(handle, CURLSHOPT_USERDATA, this);
        curl_share_setopt(handle, CURLSHOPT_LOCKFUNC, &Share::lock);
        curl_share_setopt(handle, CURLSHOPT_UNLOCKFUNC, &Share::unlock);
        curl_share_setopt(handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_DNS);
        curl_share_setopt(handle, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    }
    ~Share() { curl_share_cleanup(handle); }
    Share(const Share&) = delete;
    Share& operator=(const Share&) = delete;

    static void lock(CURL*, curl_lock_data data, curl_lock_access, void* self) {
        static_cast<Share*>(self)->locks.at(data).lock();
    }
    static void unlock(CURL*, curl_lock_data data, void* self) {
        static_cast<Share*>(self)->locks.at(data).unlock();
    }
};

// One transfer at a time with its own connection cache. libcurl cannot share a connection
// cache between concurrent threads safely, so connections are reused by reusing channels.
class HttpClient::Channel {
public:
    Channel()
        : m_multi(curl_multi_init())
        , m_easy(curl_easy_init()) {
        if (!m_multi || !m_easy) {
            curl_easy_cleanup(m_easy);
            curl_multi_cleanup(m_multi);
            throw std::bad_alloc();
        }
    }
    ~Channel() {
        curl_easy_cleanup(m_easy);
        curl_multi_cleanup(m_multi);
    }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    CURL* easy() const { return m_easy; }

    // Runs the configured transfer; returns nullopt when `stop` ended it first.
    std::optional<CURLcode> perform(const std::stop_token& stop) {
        curl_multi_add_handle(m_multi, m_easy);
        std::optional<CURLcode> result;
        {
            // Wakes the poll at once instead of at its next time-out.
            std::stop_callback wake(stop, [this] { curl_multi_wakeup(m_multi); });
            while (!(result = finished()) && !stop.stop_requested())
                curl_multi_poll(m_multi, nullptr, 0, 1000, nullptr);
        }
        curl_multi_remove_handle(m_multi, m_easy);
        return result;
    }

private:
    std::optional<CURLcode> finished() {
        int running = 0;
        if (curl_multi_perform(m_multi, &running) != CURLM_OK)
            return CURLE_FAILED_INIT;
        int left = 0;
        while (CURLMsg* message = curl_multi_info_read(m_multi, &left)) {
            if (message->msg == CURLMSG_DONE)
                return message->data.result;
        }
        return std::nullopt;
    }

    CURLM* m_multi;
    CURL* m_easy;
};

class HttpClient::ChannelPool {
public:
    std::unique_ptr<Channel> take() {
        {
            std::lock_guard lock(m_mutex);
            if (!m_idle.empty()) {
                std::unique_ptr<Channel> channel = std::move(m_idle.back());
                m_idle.pop_back();
                return channel;
            }
        }
        return std::make_unique<Channel>();
    }

    void giveBack(std::unique_ptr<Channel> channel) {
        std::lock_guard lock(m_mutex);
        if (m_idle.size() < maxIdleChannels)
            m_idle.push_back(std::move(channel));
    }

private:
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Channel>> m_idle;
};

namespace {

void configure(CURL* easy, CURLSH* share, const HttpRequest& request, const QByteArray& url,
               const HeaderList& headers, Arrival& arrival) {
    curl_easy_setopt(easy, CURLOPT_URL, url.constData());
    curl_easy_setopt(easy, CURLOPT_SHARE, share);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
#if LIBCURL_VERSION_NUM >= 0x075500
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
#else
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS, long(CURLPROTO_HTTP | CURLPROTO_HTTPS));
#endif
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, userAgent);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS,
                     std::max(1L, std::lround(request.timeoutSeconds * 1000)));
    if (request.method == HttpMethod::post) {
        curl_easy_setopt(easy, CURLOPT_POST, 1L);
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body.constData());
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(request.body.size()));
    } else {
        curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
    }
    curl_easy_setopt(easy, CURLOPT_MAXFILESIZE_LARGE, curl_off_t(request.maxAnswerBytes));
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &appendToBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &arrival);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &readHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &arrival);
}

} // namespace

HttpClient::HttpClient() {
    initialiseCurlOnce();
    m_share = std::make_unique<Share>();
    m_channels = std::make_unique<ChannelPool>();
}

HttpClient::~HttpClient() = default;

std::shared_ptr<HttpClient> HttpClient::shared() {
    static const std::shared_ptr<HttpClient> instance = std::make_shared<HttpClient>();
    return instance;
}

HttpResponse HttpClient::send(const HttpRequest& request, std::stop_token stop) const {
    throwIfStopped(stop);
    std::unique_ptr<Channel> channel = m_channels->take();
    HttpResponse response;
    std::optional<CURLcode> result;
    {
        const QByteArray url = request.url.toEncoded();
        const HeaderList headers(request.headers);
        Arrival arrival{response, request.maxAnswerBytes};
        configure(channel->easy(), m_share->handle, request, url, headers, arrival);
        result = channel->perform(stop);
        long status = 0;
        curl_easy_getinfo(channel->easy(), CURLINFO_RESPONSE_CODE, &status);
        response.status = int(status);
        // The idle handle must not keep pointers into this request; its connection stays.
        curl_easy_reset(channel->easy());
    }
    m_channels->giveBack(std::move(channel));
    if (!result)
        throw Cancelled();
    if (*result != CURLE_OK)
        throw transportError(*result, request);
    return response;
}

} // namespace velto
