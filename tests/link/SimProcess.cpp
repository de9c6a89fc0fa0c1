#include "SimProcess.h"

#include <QDeadlineTimer>

#include <cstdlib>

namespace linktest {

namespace {

constexpr int kStart_ms = 10000;

QStringList Arguments(std::vector<std::string>::const_iterator from,
                      std::vector<std::string>::const_iterator to) {
    QStringList list;
    for (; from != to; ++from)
        list << QString::fromStdString(*from);
    return list;
}

} // namespace

SimProcess::SimProcess(const std::vector<std::string>& args) {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(ZORDRIVE_SIM),
                    QStringList{"--control-stdin"} + Arguments(args.begin(), args.end()));
    m_firstLine = ReadLine();
}

SimProcess::~SimProcess() {
    m_process.closeWriteChannel(); // the simulator ends when its control channel closes
    if (!m_process.waitForFinished(3000))
        Kill();
}

void SimProcess::Kill() {
    m_process.kill();
    m_process.waitForFinished();
}

std::string SimProcess::ReadLine() {
    const QDeadlineTimer deadline(kStart_ms);
    while (!m_process.canReadLine())
        if (!m_process.waitForReadyRead(int(deadline.remainingTime())))
            return {};
    return m_process.readLine().trimmed().toStdString();
}

int SimProcess::Port() const {
    const size_t colon = m_firstLine.rfind(':');
    if (m_firstLine.rfind("tcp ", 0) != 0 || colon == std::string::npos)
        return -1;
    return std::atoi(m_firstLine.c_str() + colon + 1);
}

std::string SimProcess::Path() const {
    return m_firstLine.rfind("rtu ", 0) == 0 ? m_firstLine.substr(4) : std::string();
}

bool SimProcess::Command(const std::string& line) {
    const QByteArray text = QByteArray::fromStdString(line + "\n");
    return m_process.write(text) == text.size() && ReadLine() == "ok";
}

std::string RunCapture(const std::vector<std::string>& argv, int timeout_ms) {
    QProcess p;
    p.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    p.start(QString::fromStdString(argv.at(0)), Arguments(argv.begin() + 1, argv.end()));
    p.closeWriteChannel();
    if (!p.waitForFinished(timeout_ms)) {
        p.kill();
        p.waitForFinished();
    }
    return p.readAllStandardOutput().toStdString();
}

} // namespace linktest
