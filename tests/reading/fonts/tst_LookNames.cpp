// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/LookNames.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

using Votes = std::map<QString, double>;

CellLook lookOf(int cells, const Votes &votes, const std::map<char, float> &seen)
{
    CellLook look{cells, votes, {}};
    for (const auto &[character, probability] : seen)
        look.seen[std::size_t(character - '!')] = probability;
    return look;
}

const CellLook eight = lookOf(6, {{"8", 6}}, {{'8', 0.99F}});

} // namespace

class TestLookNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void namesLooks_data()
    {
        QTest::addColumn<std::vector<CellLook>>("looks");
        QTest::addColumn<QStringList>("names");
        const auto row = [](const char *name, const std::vector<CellLook> &looks,
                            const QStringList &names) { QTest::newRow(name) << looks << names; };
        row("as most cells were read", {lookOf(20, {{"e", 17}, {"c", 3}}, {{'e', 0.6F}})}, {"e"});
        row("as all were read, though the network sees another",
            {lookOf(11, {{"A", 11}}, {{'R', 0.7F}})}, {"A"});
        row("by the network where the engine is at odds",
            {lookOf(24, {{"u", 14}, {"w", 7}}, {{'w', 0.4F}})}, {"w"});
        row("two looks, one of which the network sees as what nobody is called",
            {eight, lookOf(43, {{"8", 18}, {"4", 11}, {"@", 8}}, {{'0', 0.33F}, {'8', 0.05F}})},
            {"8", "0"});
        row("the same in the other order",
            {lookOf(43, {{"8", 18}, {"4", 11}, {"@", 8}}, {{'0', 0.33F}, {'8', 0.05F}}), eight},
            {"0", "8"});
        row("too few cells for a name of its own",
            {eight, lookOf(3, {{"8", 3}}, {{'Q', 0.4F}, {'8', 0.05F}})}, {"8", "8"});
        row("the same letter in bold", {eight, lookOf(40, {{"8", 40}}, {{'8', 0.98F}})},
            {"8", "8"});
        row("the same letter but for its case",
            {lookOf(30, {{"u", 30}}, {{'u', 0.99F}}),
             lookOf(6, {{"u", 6}}, {{'U', 0.9F}, {'u', 0.05F}})},
            {"u", "u"});
        row("a name that another has", {eight, lookOf(9, {{"3", 9}}, {{'8', 0.9F}, {'3', 0.1F}})},
            {"8", "3"});
        row("the engine's second thought where the first is taken",
            {lookOf(30, {{"s", 30}}, {{'s', 0.99F}}),
             lookOf(4, {{"s", 0.8}, {"*", 2.9}}, {{'s', 0.3F}})},
            {"s", "*"});
        row("soft edges that the engine passes over", {lookOf(7, {{"", 2.1}}, {{',', 0.4F}})},
            {""});
        row("a dash that the engine passes over", {lookOf(7, {{"", 2.1}}, {{'-', 0.95F}})}, {"-"});
        row("a letter beyond ASCII", {lookOf(7, {{QStringLiteral("é"), 7}}, {})},
            {QStringLiteral("é")});
        row("a sign that nobody writes in a listing",
            {lookOf(9, {{QStringLiteral("§"), 5}, {"S", 4}}, {{'S', 0.9F}})}, {"S"});
    }
    void namesLooks()
    {
        QFETCH(std::vector<CellLook>, looks);
        const std::vector<QString> names = namesOf(looks);
        QTEST(QStringList(names.begin(), names.end()), "names");
    }
};

QTEST_APPLESS_MAIN(TestLookNames)
#include "tst_LookNames.moc"
