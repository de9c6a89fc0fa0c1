#include "UploadFailure.h"

#include "Options.h"

#include <zorhost/ReferenceHost.h>

#include <afx/afxqt.h>

#include <cstdio>

namespace zordrivebench {

namespace {

// Enough to see the pattern; a drive of another type refuses hundreds.
constexpr int kListedFailures = 20;

} // namespace

int ReportFailedUpload(zorhost::ReferenceHost& host, const QString& key,
                       const QString& consequence) {
    const auto& transfer = host.Transfer();
    const auto& failures = transfer.LastUploadFailures();
    QString text;
    int code = kExitReadFailed;
    if (transfer.LastUploadWentOffline() || failures.empty()) {
        code = kExitOffline;
        text = QStringLiteral("zordrivebench: the drive of module \"%1\" stopped answering "
                              "during the read; %2\n")
                   .arg(key, consequence);
    } else {
        text = QStringLiteral("zordrivebench: the drive of module \"%1\" would not give %2 of "
                              "its parameters; %3:\n")
                   .arg(key)
                   .arg(failures.size())
                   .arg(consequence);
        int listed = 0;
        for (const auto& f : failures) {
            if (listed++ == kListedFailures) {
                text += QStringLiteral("  and %1 more\n").arg(failures.size() - kListedFailures);
                break;
            }
            // The reason starts with the parameter's code: "H02-09: refused by the drive".
            text += QStringLiteral("  0x%1 (%2) %3\n")
                        .arg(QString::number(f.address, 16).toUpper().rightJustified(4, u'0'))
                        .arg(f.address)
                        .arg(AfxToQString(f.reason));
        }
    }
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    return code;
}

} // namespace zordrivebench
