// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateFeed.h"

#include <QXmlStreamReader>

namespace tovek {

namespace {

constexpr int deepestElement = 8;
constexpr int mostItems = 100;
constexpr int mostPackages = 8;
constexpr qsizetype longestNotes = 20000;
constexpr qsizetype longestText = 2000;
constexpr qsizetype signatureBytes = 64;
constexpr qsizetype digestBytes = 64;
constexpr qsizetype longestArchitecture = 20;

constexpr struct
{
    PackageKind kind;
    const char *name;
} kinds[] = {{PackageKind::appImage, "appimage"}, {PackageKind::debian, "debian"}};

/// Walks the feed, one element at a time, however deep.
class FeedReader
{
public:
    explicit FeedReader(const QByteArray &xml) : m_xml(xml)
    {
        // Half a kilobyte can stand for a gigabyte through entities that name each other.
        m_xml.setEntityExpansionLimit(0);
    }

    std::variant<UpdateFeed, FeedError> read()
    {
        while (!m_xml.atEnd() && !m_error) {
            switch (m_xml.readNext()) {
            case QXmlStreamReader::StartElement:
                start();
                break;
            case QXmlStreamReader::EndElement:
                end();
                break;
            case QXmlStreamReader::Characters:
                if (m_text.size() + m_xml.text().size() <= longestNotes)
                    m_text += m_xml.text();
                break;
            case QXmlStreamReader::DTD:
                m_error = FeedError::malformed;
                break;
            default:
                break;
            }
        }
        if (m_error)
            return *m_error;
        if (m_xml.hasError() || !m_hasRoot)
            return FeedError::malformed;
        if (!m_feed.date.isValid())
            return FeedError::undated;
        return m_feed.items.isEmpty() ? std::variant<UpdateFeed, FeedError>(FeedError::empty)
                                      : m_feed;
    }

private:
    void start()
    {
        m_text.clear();
        m_path.append(m_xml.qualifiedName().toString());
        if (m_path.size() > deepestElement)
            m_error = FeedError::tooDeep;
        else if (m_path == QStringList{QStringLiteral("rss"), QStringLiteral("channel")})
            m_hasRoot = true;
        else if (isIn(item))
            m_item = Draft();
        else if (isIn(enclosure))
            readPackage();
    }
    void end()
    {
        const QString text = m_text.left(longestText).trimmed();
        if (isIn(QStringLiteral("rss/channel/lastBuildDate")))
            m_feed.date = QDateTime::fromString(text, Qt::RFC2822Date).toUTC();
        else if (isIn(item + QStringLiteral("/version")))
            m_item.version = text;
        else if (isIn(item + QStringLiteral("/description")))
            m_item.notes = m_text.trimmed();
        else if (isIn(item + QStringLiteral("/minimumSystemVersion")))
            m_item.minimumSystem = text;
        else if (isIn(item))
            finishItem();
        m_path.removeLast();
        m_text.clear();
    }
    void readPackage()
    {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        UpdatePackage package;
        const auto kind = packageKind(attributes.value(QLatin1String("kind")).toString());
        if (!kind)
            return;
        package.kind = *kind;
        package.architecture = attributes.value(QLatin1String("architecture")).toString();
        package.url = QUrl(attributes.value(QLatin1String("url")).toString(), QUrl::StrictMode);
        package.length = attributes.value(QLatin1String("length")).toLongLong();
        package.digest = decoded(attributes, "digest");
        package.signature = decoded(attributes, "signature");
        const bool isUsable = package.url.isValid()
            && package.url.scheme() == QLatin1String("https") && !package.url.host().isEmpty()
            && package.url.userInfo().isEmpty() && package.length > 0
            && package.length <= largestPackage && !package.architecture.isEmpty()
            && package.architecture.size() <= longestArchitecture
            && package.digest.size() == digestBytes && package.signature.size() == signatureBytes;
        if (isUsable && m_item.packages.size() < mostPackages)
            m_item.packages.append(package);
    }
    /// Empty when it is no Base64.
    static QByteArray decoded(const QXmlStreamAttributes &attributes, const char *name)
    {
        return *QByteArray::fromBase64Encoding(attributes.value(QLatin1String(name)).toLatin1(),
                                               QByteArray::AbortOnBase64DecodingErrors);
    }
    void finishItem()
    {
        const auto version = Version::fromString(m_item.version);
        const auto system = Version::fromString(m_item.minimumSystem);
        const bool isSystemClear = m_item.minimumSystem.isEmpty() || system;
        if (version && isSystemClear && !m_item.packages.isEmpty()
            && m_feed.items.size() < mostItems)
            m_feed.items.append({*version, m_item.version, m_item.notes, system,
                                 m_item.minimumSystem, m_item.packages});
    }
    bool isIn(const QString &path) const { return m_path.join(QLatin1Char('/')) == path; }

    struct Draft
    {
        QString version;
        QString notes;
        QString minimumSystem;
        QList<UpdatePackage> packages;
    };

    const QString item = QStringLiteral("rss/channel/item");
    const QString enclosure = QStringLiteral("rss/channel/item/enclosure");
    QXmlStreamReader m_xml;
    QStringList m_path;
    QString m_text;
    Draft m_item;
    UpdateFeed m_feed;
    bool m_hasRoot = false;
    std::optional<FeedError> m_error;
};

} // namespace

SignedEntry entryOf(const UpdateFeed &feed, const UpdateItem &item, const UpdatePackage &package)
{
    return {item.versionText, package.kind,   package.architecture,
            package.length,   package.digest, item.minimumSystemText,
            feed.date};
}

QString nameOf(PackageKind kind)
{
    for (const auto &row : kinds) {
        if (row.kind == kind)
            return QLatin1String(row.name);
    }
    Q_UNREACHABLE();
}

std::optional<PackageKind> packageKind(const QString &name)
{
    for (const auto &row : kinds) {
        if (name == QLatin1String(row.name))
            return row.kind;
    }
    return std::nullopt;
}

std::variant<UpdateFeed, FeedError> readFeed(const QByteArray &xml)
{
    if (xml.size() > largestFeed)
        return FeedError::tooLarge;
    return FeedReader(xml).read();
}

} // namespace tovek
