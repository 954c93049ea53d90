// A stand-in for a model server on this machine (Ollama, LM Studio, llama.cpp), to try the
// settings and a whole translation without one: it lists two models and "translates" every
// cue as "es: " followed by its text. Usage: local-model-server [PORT] [MS_PER_CUE]: the port is
// 11434 by default; a delay per cue makes it as slow as a real model, to watch a long job.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <pthread.h>
#include <thread>

#include <QCoreApplication>
#include <QStringList>

#include "support/ChatCompletionsServer.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    bool valid = true;
    bool validDelay = true;
    const int port = arguments.size() > 1 ? arguments[1].toInt(&valid) : 11434;
    const int delay = arguments.size() > 2 ? arguments[2].toInt(&validDelay) : 0;
    if (!valid || !validDelay || port <= 0 || port > 65535 || delay < 0) {
        std::fprintf(stderr, "Uso: local-model-server [PUERTO] [MS_POR_SUBTÍTULO]\n");
        return 2;
    }
    // Waited for below rather than handled, so Ctrl-C ends the wait cleanly.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    const velto::test::ChatCompletionsServer server(
        {.key = {},
         .port = port,
         .translate = [delay](int, const QString& text) -> QString {
             std::this_thread::sleep_for(std::chrono::milliseconds(delay));
             return QStringLiteral("es: ") + text;
         },
         // As a real server does, so the cost shows.
         .reportUsage = true});
    std::printf("Servidor de prueba en %s (modelos: modelo-a, modelo-b). Ctrl-C para terminar.\n",
                qPrintable(server.baseUrl()));
    std::fflush(stdout);
    int received = 0;
    sigwait(&stopSignals, &received);
    return 0;
}
