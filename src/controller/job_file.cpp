#include "controller/job_file.h"

#include "watermark/watermark_settings.h"
#include "model/media_type.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <algorithm>
#include <vector>

namespace tavrelune {

EncodeSettings SettingsChoice::appliedTo(EncodeSettings settings) const
{
    settings.codec = codec.value_or(settings.codec);
    settings.quality = quality.value_or(settings.quality);
    settings.copyAudio = copyAudio.value_or(settings.copyAudio);
    settings.removeAudio = removeAudio.value_or(settings.removeAudio);
    settings.concatenateClips = concatenateClips.value_or(settings.concatenateClips);
    settings.matchPreview = matchPreview.value_or(settings.matchPreview);
    settings.combinedName = combinedName.value_or(settings.combinedName);
    return settings;
}

void SettingsChoice::overrideWith(const SettingsChoice& given)
{
    tavrelune::overrideWith(codec, given.codec);
    tavrelune::overrideWith(quality, given.quality);
    tavrelune::overrideWith(copyAudio, given.copyAudio);
    tavrelune::overrideWith(removeAudio, given.removeAudio);
    tavrelune::overrideWith(concatenateClips, given.concatenateClips);
    tavrelune::overrideWith(matchPreview, given.matchPreview);
    tavrelune::overrideWith(combinedName, given.combinedName);
}

void GradeChoice::applyTo(ClipItem& clip) const
{
    for (std::size_t i = 0; i < gradeControls.size(); ++i) {
        double& value = clip.grade.*gradeControls[i].member;
        value = (this->*members[i]).value_or(value);
    }
}

void GradeChoice::overrideWith(const GradeChoice& given)
{
    for (const auto member : members)
        tavrelune::overrideWith(this->*member, given.*member);
}

void WatermarkChoice::overrideWith(const WatermarkChoice& given)
{
    tavrelune::overrideWith(url, given.url);
    tavrelune::overrideWith(x, given.x);
    tavrelune::overrideWith(y, given.y);
    tavrelune::overrideWith(widthFraction, given.widthFraction);
    tavrelune::overrideWith(opacity, given.opacity);
}

void JobClip::applyTo(ClipItem& clip) const
{
    grade.applyTo(clip);
    if (inPoint)
        clip.inPoint = *inPoint;
    if (outPoint)
        clip.outPoint = *outPoint;
    if (clip.duration)
        clip.clampTrimTo(*clip.duration);
}

namespace {

[[noreturn]] void fail(const QString& key, const QString& problem)
{
    throw JobFileError{key + ": " + problem};
}

// One JSON object of the job, with the key path it sits at for messages.
class Section {
public:
    Section(QJsonObject object, QString path, const QStringList& allowed)
        : object_(std::move(object)), path_(std::move(path))
    {
        for (const QString& key : object_.keys())
            if (!allowed.contains(key))
                fail(keyPath(key), QStringLiteral("unknown key"));
    }

    QString keyPath(const QString& key) const { return path_.isEmpty() ? key : path_ + '.' + key; }

    std::optional<double> number(const QString& key) const
    {
        return typed<double>(key, &QJsonValue::isDouble, "a number", [](const QJsonValue& v) { return v.toDouble(); });
    }

    std::optional<double> number(const QString& key, const GradeRange& range) const
    {
        const auto value = number(key);
        if (value && !range.contains(*value))
            fail(keyPath(key), QStringLiteral("%1 is outside %2").arg(QString::number(*value), range.text()));
        return value;
    }

    std::optional<double> time(const QString& key) const
    {
        const auto seconds = number(key);
        if (seconds && *seconds < 0)
            fail(keyPath(key), QStringLiteral("must not be negative"));
        return seconds;
    }

    std::optional<bool> boolean(const QString& key) const
    {
        return typed<bool>(key, &QJsonValue::isBool, "true or false", [](const QJsonValue& v) { return v.toBool(); });
    }

    std::optional<QString> string(const QString& key) const
    {
        return typed<QString>(key, &QJsonValue::isString, "a string",
                              [](const QJsonValue& v) { return v.toString(); });
    }

    std::optional<QJsonObject> object(const QString& key) const
    {
        return typed<QJsonObject>(key, &QJsonValue::isObject, "an object",
                                  [](const QJsonValue& v) { return v.toObject(); });
    }

    std::optional<QJsonArray> array(const QString& key) const
    {
        return typed<QJsonArray>(key, &QJsonValue::isArray, "a list",
                                 [](const QJsonValue& v) { return v.toArray(); });
    }

    // A file path, resolved against `base`; `accepts` checks its extension.
    std::optional<QString> path(const QString& key, const QString& base, bool (*accepts)(const QString&),
                                const QString& kind) const
    {
        const auto text = string(key);
        if (!text)
            return std::nullopt;
        if (text->isEmpty())
            fail(keyPath(key), QStringLiteral("must not be empty"));
        const QString resolved = QDir::cleanPath(QDir(base).absoluteFilePath(*text));
        if (accepts && !accepts(resolved))
            fail(keyPath(key), QStringLiteral("\"%1\" is not %2").arg(*text, kind));
        return resolved;
    }

private:
    template <typename T, typename Convert>
    std::optional<T> typed(const QString& key, bool (QJsonValue::*isType)() const, const char* expected,
                           Convert convert) const
    {
        if (!object_.contains(key))
            return std::nullopt;
        const QJsonValue value = object_.value(key);
        if (!(value.*isType)())
            fail(keyPath(key), QStringLiteral("expected %1").arg(QLatin1String(expected)));
        return convert(value);
    }

    QJsonObject object_;
    QString path_;
};

template <typename Enum>
std::optional<Enum> named(const Section& section, const QString& key,
                          std::optional<Enum> (*fromName)(const QString&), const QString& choices)
{
    const auto name = section.string(key);
    if (!name)
        return std::nullopt;
    const auto value = fromName(*name);
    if (!value)
        fail(section.keyPath(key), QStringLiteral("unknown value \"%1\" (use %2)").arg(*name, choices));
    return value;
}

GradeChoice readGrade(const Section& section)
{
    GradeChoice grade;
    for (std::size_t i = 0; i < gradeControls.size(); ++i)
        grade.*GradeChoice::members[i] = section.number(gradeControls[i].jobKey, gradeControls[i].range);
    return grade;
}

SettingsChoice readSettings(const Section& section)
{
    SettingsChoice settings;
    settings.codec = named(section, "codec", videoCodecFromCaseName, "h264 or hevc");
    settings.quality = named(section, "quality", qualityPresetFromCaseName, "high, balanced or small");
    settings.copyAudio = section.boolean("copyAudio");
    settings.removeAudio = section.boolean("removeAudio");
    settings.concatenateClips = section.boolean("concatenateClips");
    settings.matchPreview = section.boolean("matchPreview");
    settings.combinedName = section.string("combinedName");
    return settings;
}

WatermarkChoice readWatermark(const Section& section, const QString& base)
{
    return {section.path("url", base, MediaType::isWatermark, "a PNG or SVG file"),
            section.number("x", watermarkPositionRange), section.number("y", watermarkPositionRange),
            section.number("widthFraction", watermarkWidthRange), section.number("opacity", watermarkOpacityRange)};
}

QStringList clipKeys()
{
    QStringList keys{"url", "inPoint", "outPoint"};
    for (const GradeControl& control : gradeControls)
        keys << QString::fromLatin1(control.jobKey);
    return keys;
}

JobClip readClip(const Section& section, const QString& base)
{
    JobClip clip;
    const auto url = section.path("url", base, MediaType::isVideo, "a video file");
    if (!url)
        fail(section.keyPath("url"), QStringLiteral("missing"));
    clip.url = *url;
    clip.grade = readGrade(section);
    clip.inPoint = section.time("inPoint");
    clip.outPoint = section.time("outPoint");
    if (clip.outPoint && *clip.outPoint <= clip.inPoint.value_or(0))
        fail(section.keyPath("outPoint"), QStringLiteral("must be after inPoint"));
    return clip;
}

// The key path of the first key that appears twice in one object of valid
// JSON text ("clips[1].exposure"), which Qt's parser would silently drop
// in favour of the last. Each object has its own set of keys.
std::optional<QString> repeatedKey(const QByteArray& json)
{
    struct Container {
        bool isObject;
        QString path;
        QSet<QString> keys;  // objects
        QString key;         // objects: the key whose value comes next
        bool expectingKey = true;
        qsizetype index = 0;  // lists: the element that comes next
    };
    std::vector<Container> open;
    const auto childPath = [&open]() {
        if (open.empty())
            return QString();
        const Container& parent = open.back();
        if (!parent.isObject)
            return QStringLiteral("%1[%2]").arg(parent.path).arg(parent.index);
        return parent.path.isEmpty() ? parent.key : parent.path + '.' + parent.key;
    };
    for (qsizetype i = 0; i < json.size(); ++i) {
        switch (json[i]) {
        case '{':
        case '[':
            open.push_back({json[i] == '{', childPath(), {}, {}});
            break;
        case '}':
        case ']':
            open.pop_back();
            break;
        case ',':
            if (open.back().isObject)
                open.back().expectingKey = true;
            else
                ++open.back().index;
            break;
        case '"': {
            const qsizetype start = i;
            for (++i; json[i] != '"'; ++i)
                if (json[i] == '\\')
                    ++i;
            Container& inside = open.back();
            if (!inside.isObject || !inside.expectingKey)
                break;
            // Decoded, so that escapes spelling the same key count as it.
            const QByteArray list = '[' + json.mid(start, i + 1 - start) + ']';
            inside.key = QJsonDocument::fromJson(list).array().first().toString();
            inside.expectingKey = false;
            if (inside.keys.contains(inside.key))
                return childPath();
            inside.keys.insert(inside.key);
            break;
        }
        default:
            break;
        }
    }
    return std::nullopt;
}

}  // namespace

ConvertJob parseConvertJob(const QByteArray& json, const QString& baseFolder)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        throw JobFileError{QStringLiteral("not valid JSON (%1 at offset %2)")
                               .arg(parseError.errorString())
                               .arg(parseError.offset)};
    if (!document.isObject())
        throw JobFileError{QStringLiteral("expected a JSON object at the top")};
    if (const auto key = repeatedKey(json))
        fail(*key, QStringLiteral("given twice"));

    const Section top(document.object(), QString(),
                      {"outputFolder", "settings", "lut", "watermark", "clips"});
    ConvertJob job;
    job.outputFolder = top.path("outputFolder", baseFolder, nullptr, QString());
    if (const auto settings = top.object("settings"))
        job.settings = readSettings(Section(*settings, "settings",
                                            {"codec", "quality", "copyAudio", "removeAudio",
                                             "concatenateClips", "matchPreview", "combinedName"}));
    job.lut = top.path("lut", baseFolder, MediaType::isLut, "a LUT file (.cube)");
    if (const auto watermark = top.object("watermark"))
        job.watermark = readWatermark(
            Section(*watermark, "watermark", {"url", "x", "y", "widthFraction", "opacity"}), baseFolder);

    const QJsonArray clips = top.array("clips").value_or(QJsonArray());
    for (qsizetype i = 0; i < clips.size(); ++i) {
        const QString at = QStringLiteral("clips[%1]").arg(i);
        if (!clips[i].isObject())
            fail(at, QStringLiteral("expected an object"));
        const JobClip clip = readClip(
            Section(clips[i].toObject(), at,
                    clipKeys()),
            baseFolder);
        // A second entry would be dropped from the batch as a duplicate and
        // quietly replace the first one's grade and trim.
        const auto earlier = std::find_if(job.clips.begin(), job.clips.end(),
                                          [&clip](const JobClip& other) { return other.url == clip.url; });
        if (earlier != job.clips.end())
            fail(at + ".url", QStringLiteral("repeats clips[%1]").arg(earlier - job.clips.begin()));
        job.clips << clip;
    }
    return job;
}

namespace {

void put(QJsonObject& object, const QString& key, const std::optional<double>& value)
{
    if (value)
        object.insert(key, *value);
}

void put(QJsonObject& object, const QString& key, const std::optional<bool>& value)
{
    if (value)
        object.insert(key, *value);
}

void put(QJsonObject& object, const QString& key, const std::optional<QString>& value)
{
    if (value)
        object.insert(key, *value);
}

}  // namespace

QByteArray convertJobText(const ConvertJob& job)
{
    QJsonObject top;
    put(top, "outputFolder", job.outputFolder);
    QJsonObject settings;
    const SettingsChoice& s = job.settings;
    if (s.codec)
        settings.insert("codec", caseName(*s.codec));
    if (s.quality)
        settings.insert("quality", caseName(*s.quality));
    put(settings, "copyAudio", s.copyAudio);
    put(settings, "removeAudio", s.removeAudio);
    put(settings, "concatenateClips", s.concatenateClips);
    put(settings, "matchPreview", s.matchPreview);
    put(settings, "combinedName", s.combinedName);
    if (!settings.isEmpty())
        top.insert("settings", settings);
    put(top, "lut", job.lut);
    QJsonObject watermark;
    put(watermark, "url", job.watermark.url);
    put(watermark, "x", job.watermark.x);
    put(watermark, "y", job.watermark.y);
    put(watermark, "widthFraction", job.watermark.widthFraction);
    put(watermark, "opacity", job.watermark.opacity);
    if (!watermark.isEmpty())
        top.insert("watermark", watermark);
    QJsonArray clips;
    for (const JobClip& clip : job.clips) {
        QJsonObject entry{{"url", clip.url}};
        for (std::size_t i = 0; i < gradeControls.size(); ++i)
            put(entry, gradeControls[i].jobKey, clip.grade.*GradeChoice::members[i]);
        put(entry, "inPoint", clip.inPoint);
        put(entry, "outPoint", clip.outPoint);
        clips.append(entry);
    }
    top.insert("clips", clips);
    return QJsonDocument(top).toJson(QJsonDocument::Indented);
}

ConvertJob readConvertJob(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw JobFileError{QStringLiteral("cannot read the job file (%1)").arg(file.errorString())};
    return parseConvertJob(file.readAll(), QFileInfo(path).absolutePath());
}

}  // namespace tavrelune
