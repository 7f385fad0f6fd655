#include "output/movie_file.h"

namespace vantle {

MovieFile::MovieFile(const MovieKind& kind, const std::string& name, bool overwrite)
    : file_(name == "-" ? std::nullopt : std::optional<StagedFile>(std::in_place, name, overwrite)),
      muxer_(file_ ? "file:" + path() : "pipe:1", kind.muxer, file_ ? name : "standard output") {}

void MovieFile::describe(const std::map<std::string, std::string>& tags, const std::vector<Chapter>& chapters,
                         AVRational rate) {
    muxer_.describe(tags);
    chapters_ = chapters;
    rate_ = rate;
}

void MovieFile::write(PacketSource& pictures, PacketSource* audio, const av::Options& muxerOptions,
                      const std::function<void(std::int64_t)>& written) {
    const AVStream& pictureStream = pictures.addTo(muxer_);
    const AVStream* const audioStream = audio != nullptr ? &audio->addTo(muxer_) : nullptr;
    for (const Chapter& chapter : chapters_)
        muxer_.addChapter(chapter.title, chapter.first, chapter.end, av_inv_q(rate_));
    muxer_.start(muxerOptions);
    av::Packet picture = pictures.next();
    av::Packet samples = audio != nullptr ? audio->next() : nullptr;
    for (std::int64_t count = 0; picture || samples;) {
        const bool pictureIsNext =
            picture && (!samples || av_compare_ts(picture->dts, pictures.timeBase(), samples->dts,
                                                  audio->timeBase()) <= 0);
        if (pictureIsNext) {
            muxer_.write(*picture, pictureStream, pictures.timeBase());
            picture = pictures.next();
            written(++count);
        } else {
            muxer_.write(*samples, *audioStream, audio->timeBase());
            samples = audio->next();
        }
    }
    muxer_.finish();
}

void MovieFile::commit() {
    if (file_) file_->commit();
}

}  // namespace vantle
