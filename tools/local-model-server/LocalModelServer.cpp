// A stand-in for a model server on this machine (Ollama, LM Studio, llama.cpp), to try the
// settings and a whole translation without one: it lists two models and "translates" every
// cue as "es: " followed by its text. Usage: local-model-server [PORT] (11434 by default).

#include <csignal>
#include <cstdio>
#include <pthread.h>

#include <QCoreApplication>
#include <QStringList>

#include "support/ChatCompletionsServer.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    bool valid = true;
    const int port = arguments.size() > 1 ? arguments[1].toInt(&valid) : 11434;
    if (!valid || port <= 0 || port > 65535) {
        std::fprintf(stderr, "Uso: local-model-server [PUERTO]\n");
        return 2;
    }
    // Waited for below rather than handled, so Ctrl-C ends the wait cleanly.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    const velto::test::ChatCompletionsServer server({.key = {}, .port = port});
    std::printf("Servidor de prueba en %s (modelos: modelo-a, modelo-b). Ctrl-C para terminar.\n",
                qPrintable(server.baseUrl()));
    std::fflush(stdout);
    int received = 0;
    sigwait(&stopSignals, &received);
    return 0;
}
