// Chinese for the texts Qt itself puts on standard buttons (message boxes, file dialogs),
// which it otherwise shows in English whatever language the program speaks.
#pragma once

#include <QTranslator>

namespace zordrivebench {

class ChineseStandardTexts : public QTranslator {
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override;
};

} // namespace zordrivebench
