#pragma once

#include "desk/desk.h"

#include <stdexcept>

namespace bench {

// Speaks to nobody: a page that has something to say is a failure.
class SilentDesk : public desk::Desk {
  public:
    void notify(const QString& text, const QString&, desk::Icon) override {
        throw std::runtime_error(text.toStdString());
    }
    bool ask(const QString&, const QString&, desk::Preset) override { return false; }
    void inform(const QString&) override {}
    QDate today() const override { return QDate(2026, 11, 22); }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override { return {}; }
};

} // namespace bench
