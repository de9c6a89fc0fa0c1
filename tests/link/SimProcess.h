// zordrive-sim as a child process: started with its arguments, waited for until it tells
// where it listens, and always stopped (killed at the latest when the object goes).
#pragma once

#include <string>
#include <vector>

namespace linktest {

class SimProcess {
public:
    // Starts `zordrive-sim --control-stdin args...` and waits for its first line.
    explicit SimProcess(const std::vector<std::string>& args);
    ~SimProcess();
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    bool Started() const { return !m_firstLine.empty(); }
    const std::string& FirstLine() const { return m_firstLine; }
    int Port() const;         // of "tcp HOST:PORT", -1 otherwise
    std::string Path() const; // of "rtu PATH"

    // Sends a control command and waits for its "ok".
    bool Command(const std::string& line);
    // Ends it at once, as a crash or a pulled plug would.
    void Kill();

private:
    std::string ReadLine(int timeout_ms);
    int m_pid = -1;
    int m_in = -1, m_out = -1;
    std::string m_buffer, m_firstLine;
};

// Runs a command line, returns its standard output; gives up after `timeout_ms`.
std::string RunCapture(const std::vector<std::string>& argv, int timeout_ms);

} // namespace linktest
