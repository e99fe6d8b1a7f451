// hoshiren-sample: makes a register of made-up households, in any size.
#include "sample/sample_register.h"

#include "store/database.h"
#include "values/dates.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Makes a register of made-up households, for trying out and measuring."_s);
    parser.addHelpOption();
    parser.addOption({u"households"_s, u"How many, 1 to 32767; 300 unless told otherwise."_s, u"N"_s, u"300"_s});
    parser.addOption({u"today"_s,
                      u"The day up to which it was kept (yyyy-mm-dd); the current one unless told "
                      u"otherwise. The same day gives the same register."_s,
                      u"DAY"_s, QDate::currentDate().toString(Qt::ISODate)});
    parser.addPositionalArgument(u"FILE"_s, u"The register to make; it must not be there yet."_s);
    parser.process(app);

    QTextStream errors(stderr);
    const int households = parser.value(u"households"_s).toInt();
    const auto today = values::readDate(parser.value(u"today"_s));
    if (parser.positionalArguments().size() != 1 || households < 1 || households > sample::mostHouseholds || !today) {
        errors << parser.helpText();
        return 2;
    }
    try {
        sample::makeRegister(parser.positionalArguments().constFirst(), households, *today);
        return 0;
    } catch (const std::exception& failure) {
        errors << store::explain(failure) << Qt::endl;
        return 1;
    }
}
