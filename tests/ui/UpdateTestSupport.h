#pragma once

// Helpers shared by the update-check and preferences tests: a loopback HTTP server that serves
// version files, a debug-log recorder and a prompter that answers instead of the user.

#include "update/UpdateChecker.h"

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>

// Answers every GET with one canned response, or never answers at all.
class LoopbackHttpServer
{
public:
    LoopbackHttpServer()
    {
        m_server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
        });
    }

    bool isListening() const { return m_server.isListening(); }
    quint16 port() const { return m_server.serverPort(); }
    QString hostAndPort() const { return QStringLiteral("127.0.0.1:%1").arg(port()); }

    void respondWith(int status, const QByteArray& body)
    {
        m_silent = false;
        m_status = status;
        m_body = body;
    }
    void stayQuiet() { m_silent = true; }

    int requestCount() const { return m_requestLines.size(); }
    // First line of every request received, e.g. "GET /software/VxAppVersions.xml HTTP/1.1".
    QList<QByteArray> requestLines() const { return m_requestLines; }

private:
    void read(QTcpSocket* socket)
    {
        QByteArray& pending = m_pending[socket];
        pending += socket->readAll();
        const int end = pending.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        m_requestLines.append(pending.left(pending.indexOf("\r\n")));
        pending.clear();
        if (m_silent)
            return;
        const QByteArray reason = m_status == 200 ? "OK" : "Not Found";
        socket->write("HTTP/1.1 " + QByteArray::number(m_status) + ' ' + reason + "\r\n" +
                      "Content-Type: text/xml\r\nContent-Length: " + QByteArray::number(m_body.size()) +
                      "\r\nConnection: close\r\n\r\n" + m_body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QHash<QTcpSocket*, QByteArray> m_pending;
    QList<QByteArray> m_requestLines;
    bool m_silent = false;
    int m_status = 200;
    QByteArray m_body;
};

// Collects debug lines while alive.
class LogCapture
{
public:
    LogCapture() { m_previous = qInstallMessageHandler(&LogCapture::handler); }
    ~LogCapture() { qInstallMessageHandler(m_previous); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    static QStringList& lines()
    {
        static QStringList captured;
        return captured;
    }
    static void clear() { lines().clear(); }
    static int indexOf(const QString& line) { return lines().indexOf(line); }
    static int indexStartingWith(const QString& prefix)
    {
        for (int i = 0; i < lines().size(); ++i) {
            if (lines().at(i).startsWith(prefix))
                return i;
        }
        return -1;
    }

private:
    static void handler(QtMsgType type, const QMessageLogContext&, const QString& message)
    {
        if (type == QtDebugMsg)
            lines().append(message);
    }
    QtMessageHandler m_previous = nullptr;
};

// Records every prompt and answers questions with a preset answer.
class RecordingPrompter : public UpdatePrompter
{
public:
    struct Prompt {
        QString kind;
        QString title;
        QString text;
    };

    void information(const QString& title, const QString& text) override
    {
        prompts.append({QStringLiteral("information"), title, text});
    }
    bool question(const QString& title, const QString& text) override
    {
        prompts.append({QStringLiteral("question"), title, text});
        return answerYes;
    }

    QList<Prompt> prompts;
    bool answerYes = false;
};

inline QString releaseXml(uint major, uint minor, uint revision, uint build, uint serverBuild,
                          const QString& url = QStringLiteral("https://downloads.vorlux.example/runplan"),
                          const QString& type = QStringLiteral("Gold"))
{
    return QStringLiteral("<Release type=\"%1\"><Major>%2</Major><Minor>%3</Minor><Rev>%4</Rev>"
                          "<Build>%5</Build><ServerBuildNumber>%6</ServerBuildNumber><URL>%7</URL></Release>")
        .arg(type)
        .arg(major)
        .arg(minor)
        .arg(revision)
        .arg(build)
        .arg(serverBuild)
        .arg(url);
}

// A version file listing the given releases for one application on one operating system.
inline QByteArray versionFile(const QString& releases, const QString& appName = QStringLiteral("RUNPLAN"),
                              const QString& osName = QStringLiteral("Windows"))
{
    return QStringLiteral("<?xml version=\"1.0\"?>\n<Applications>"
                          "<Application name=\"OTHERTOOL\"><OS name=\"Windows\">%4</OS></Application>"
                          "<Application name=\"%1\"><OS name=\"%2\">%3</OS></Application></Applications>")
        .arg(appName, osName, releases, releaseXml(9, 9, 9, 9, 9))
        .toUtf8();
}
