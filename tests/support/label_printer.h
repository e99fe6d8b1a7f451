#pragma once

#include "printing/label_printer.h"

#include <QStringList>

#include <cmath>

// A font of full-width characters 4 mm and ASCII 2 mm wide, that lacks "鷗" and everything beyond the basic plane.
class TestFont : public printing::LabelFont {
  public:
    double width(const QString& text) const override {
        measured += text.size();
        double width = 0;
        for (const QChar c : text)
            width += c.unicode() < 0x80 ? 2 : 4;
        return width;
    }
    bool canPrint(char32_t character) const override { return character < 0x10000 && character != U'鷗'; }

    mutable qsizetype measured = 0; // characters
};

// Keeps the jobs it is handed; refuses them with a message when told to, and says that they went into `file` or are
// `waiting`.
class TestPrinter : public printing::LabelPrinter {
  public:
    const printing::LabelFont& font() const override { return font_; }
    printing::PrintedJob print(const printing::LabelRun& run) override {
        if (!refusal.isEmpty())
            throw printing::PrintFailure(refusal);
        jobs.push_back(run.sheets());
        return {file, waiting};
    }
    // The texts of a job's lines at this place below the tops of their labels, in millimetres.
    QStringList lines(std::size_t job, double below) const {
        QStringList texts;
        for (const printing::LabelSheet& sheet : jobs.at(job)) {
            for (const printing::LabelLine& line : sheet) {
                if (std::abs(std::fmod(line.top - below + 0.001, 43.2) - 21.6) < 0.01)
                    texts << line.text;
            }
        }
        return texts;
    }

    QString refusal;
    QString file;
    QString waiting;
    std::vector<std::vector<printing::LabelSheet>> jobs;

  private:
    TestFont font_;
};
