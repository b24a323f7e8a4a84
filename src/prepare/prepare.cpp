#include "prepare/prepare.h"

#include "platform/files.h"
#include "platform/memory_left.h"
#include "platform/paths.h"
#include "platform/within_memory.h"
#include "prepare/elements/finite_elements.h"
#include "prepare/part_file.h"
#include "prepare/prepare_record.h"
#include "prepare/top_file.h"
#include "prepare/whole.h"
#include "text/lower_case.h"
#include "write/byte_sink.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <thread>
#include <utility>

namespace tarnwick::prepare {

namespace {

constexpr std::size_t kLongestStem = 80;

std::string StemOf(const std::string& input) {
    std::string name = NameOf(input);
    for (bool isCut = true; isCut;) {
        isCut = false;
        const std::string lower = LowerCase(name);
        for (const char* const ending :
             {".stp", ".step", ".p21", ".stpz", ".stpx", ".stpxz", ".xml", ".gz", ".z", ".zip", ".stpa"}) {
            const std::string_view end(ending);
            if (lower.size() > end.size() && lower.ends_with(end)) {
                name.resize(name.size() - end.size());
                isCut = true;
                break;
            }
        }
    }
    return name;
}

// A name of a file on any system, in which the viewer's readers find nothing odd.
std::string FileStem(const std::string& name) {
    std::string stem;
    for (const char c : name) {
        const bool isPlain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
        if (isPlain || stem.empty() || stem.back() != '_') { stem.push_back(isPlain ? c : '_'); }
    }
    if (stem.size() > kLongestStem) { stem.resize(kLongestStem); }
    return stem;
}

// The folder of an outcome's parts. The top file names it, so its name must be one that the viewer's readers
// take unchanged and don't find too long. Any other stem is replaced and gets its hash, since several inputs
// may share a folder.
std::string PartsFolder(const std::string& stem) {
    constexpr std::string_view kFurther = "-_. +()=";
    const bool isTaken = stem.size() <= kLongestStem && std::all_of(stem.begin(), stem.end(), [&](char c) {
                             return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                    (c >= '0' && c <= '9') || kFurther.find(c) != std::string_view::npos;
                         });
    if (isTaken) { return stem + ".parts"; }
    std::uint32_t hash = 2166136261; // FNV-1a
    for (const char c : stem) { hash = (hash ^ static_cast<unsigned char>(c)) * 16777619; }
    char digits[16];
    std::snprintf(digits, sizeof digits, "-%08x", static_cast<unsigned>(hash));
    return FileStem(stem) + digits + ".parts";
}

std::string OptionsLine(const PrepareOptions& o) {
    char numbers[160];
    std::snprintf(numbers, sizeof numbers, "%s deflection %.17g angle %.17g limit %.17g", TARNWICK_VERSION,
                  o.deflection, o.angle, o.timeLimit);
    return std::string(numbers) + (o.isCompressed ? " compressed" : " plain") +
           (o.meshProgram.empty() ? " without kernel" : " with kernel");
}

// The text of a file while some worker needs it.
struct SourceText {
    FileBytes bytes;
    std::unique_ptr<ExchangeFile> file;
};

class SourceTexts {
public:
    explicit SourceTexts(Whole* whole) : whole_(*whole), places_(whole->files.size()) {}

    // Null where the file can't be read again, then mostly with an error, or is another one by now.
    std::shared_ptr<const ExchangeFile> Get(std::size_t place, std::string* error) {
        WholeFileEntry& entry = whole_.files[place];
        // The top is kept as it was read.
        if (entry.source != nullptr) { return {std::shared_ptr<void>(), entry.source->file.get()}; }
        // Workers read different files at once, but each file only once.
        const std::lock_guard lock(places_[place].mutex);
        if (std::shared_ptr<const SourceText> known = places_[place].text.lock()) {
            return {known, known->file.get()};
        }
        const auto text = std::make_shared<SourceText>();
        const auto most = static_cast<std::size_t>(MemoryLeft());
        text->bytes = entry.member.empty() ? ReadFileBytes(entry.path, most)
                                           : ReadMemberBytes(entry.path, entry.member, most);
        if (!text->bytes.IsRead() || text->bytes.digest != entry.digest) {
            if (!text->bytes.error.empty()) { *error = "its file can't be read again: " + text->bytes.error; }
            return nullptr;
        }
        text->file = std::make_unique<ExchangeFile>(text->bytes.Text());
        places_[place].text = text;
        return {text, text->file.get()};
    }

private:
    struct Place {
        std::mutex mutex;
        std::weak_ptr<const SourceText> text;
    };

    Whole& whole_;
    std::vector<Place> places_; // by file
};

class Preparation {
public:
    Preparation(const std::string& input, const PrepareOptions& options, const TellProgress& tell,
                const std::atomic<bool>* cancel)
        : options_(options), tell_(tell), cancel_(cancel), stem_(StemOf(input)),
          partsFolder_(PartsFolder(stem_)) {
        result_.input = input;
        result_.output = options.folder + "/" + OutcomeName(input, options.isCompressed);
    }

    PrepareResult Run() {
        const auto begin = std::chrono::steady_clock::now();
        try {
            Work();
        } catch (const std::bad_alloc&) { result_.error = kNotEnoughMemory; }
        result_.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
        return std::move(result_);
    }

private:
    struct Job {
        std::size_t product = 0;
        std::string file;      // from the folder on, as it is written
        std::string reference; // as the top file names it
        PartResult result;
        std::string error = kNotEnoughMemory; // until something else comes of it
    };
    static constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);
    // What a worker has open.
    struct OpenSource {
        std::size_t place = kNoPlace; // of the file
        std::shared_ptr<const ExchangeFile> file;
        std::optional<Styles> styles;
    };

    bool IsCancelled() const { return cancel_ != nullptr && *cancel_; }
    std::string RecordPath() const { return options_.folder + "/" + partsFolder_ + "/prepared.txt"; }

    void Work() {
        if (AreSameFile(result_.input, result_.output)) {
            result_.error = "the outcome would take the place of the file; choose another folder";
            return;
        }
        if (!options_.isForced && TakeEarlier()) { return; }
        whole_ = LoadWhole(result_.input, cancel_);
        if (!whole_.error.empty()) {
            result_.error = whole_.error;
            return;
        }
        result_.losses = std::move(whole_.losses);
        std::string why;
        if (!MakeFolders(options_.folder + "/" + partsFolder_, &why)) {
            result_.error = "its folder can't be made: " + why;
            return;
        }
        PlanJobs();
        RunJobs();
        if (IsCancelled()) {
            result_.isCancelled = true;
            return;
        }
        Finish();
    }

    bool TakeEarlier() {
        std::optional<PrepareRecord> record = ReadRecord(RecordPath());
        if (!record || record->options != OptionsLine(options_) || record->inputs.empty() ||
            !AreSameFile(record->inputs[0].first, result_.input) || !Holds(*record, options_.folder)) {
            return false;
        }
        record->result.input = std::move(result_.input);
        record->result.output = std::move(result_.output);
        result_ = std::move(record->result);
        result_.isUnchanged = true;
        return true;
    }

    // A job for each product with shape that the root leads to, file by file.
    void PlanJobs() {
        isSingle_ = whole_.products[whole_.root].uses.empty();
        places_ = PlacesOf(whole_);
        std::set<std::string> stems;
        for (std::size_t i = 0; i < whole_.products.size(); ++i) {
            if (places_[i] == 0 || whole_.products[i].shape.empty()) { continue; }
            std::string stem = FileStem(whole_.products[i].name);
            for (int next = 2; !stems.insert(LowerCase(stem)).second; ++next) {
                stem = FileStem(whole_.products[i].name) + "-" + std::to_string(next + static_cast<int>(i));
            }
            Job job;
            job.product = i;
            const char* const packed = options_.isCompressed ? "z" : "";
            job.file = isSingle_ ? OutcomeName(result_.input, options_.isCompressed)
                                 : partsFolder_ + "/" + stem + ".stp" + packed;
            job.reference = partsFolder_ + "/" + stem + ".stp";
            jobs_.push_back(std::move(job));
        }
        std::stable_sort(jobs_.begin(), jobs_.end(), [this](const Job& a, const Job& b) {
            return whole_.products[a.product].file < whole_.products[b.product].file;
        });
    }

    void RunJobs() {
        SourceTexts texts(&whole_);
        texts_ = &texts;
        Tell();
        const std::size_t processors = std::max(1u, std::thread::hardware_concurrency());
        const std::size_t workers = std::min(options_.jobs > 0 ? options_.jobs : processors, jobs_.size());
        std::vector<std::thread> threads;
        threads.reserve(workers);
        try {
            while (threads.size() + 1 < workers) {
                threads.emplace_back([this] { RunWorker(); });
            }
        } catch (const std::exception&) {} // no room for another one; fewer threads do the same
        RunWorker();
        for (std::thread& thread : threads) { thread.join(); }
        texts_ = nullptr;
    }

    // What one thread does. Where memory runs out, it goes on with the next part, or ends.
    void RunWorker() {
        WithinMemory([this] {
            std::optional<Mesher> mesher;
            if (!options_.meshProgram.empty()) {
                MesherOptions meshing;
                meshing.program = options_.meshProgram;
                meshing.deflection = options_.deflection;
                meshing.angle = options_.angle;
                meshing.timeLimit = options_.timeLimit;
                meshing.memoryLimit = static_cast<std::size_t>(MemoryLeft());
                mesher.emplace(meshing, cancel_);
            }
            OpenSource source;
            for (;;) {
                const std::size_t next = nextJob_++;
                if (next >= jobs_.size() || IsCancelled()) { return; }
                WithinMemory([&] { RunNext(&jobs_[next], &source, mesher ? &*mesher : nullptr); });
                ++done_;
                Tell();
            }
        });
    }

    void RunNext(Job* job, OpenSource* source, Mesher* mesher) {
        const std::size_t place = whole_.products[job->product].file;
        if (place != source->place) {
            std::string error = "its file changed or went away meanwhile";
            source->place = kNoPlace;
            source->styles.reset();
            source->file = texts_->Get(place, &error);
            if (source->file == nullptr) {
                job->error = std::move(error);
                return;
            }
            source->styles.emplace(*source->file);
            source->place = place;
        }
        RunJob(job, {*source->file, whole_.files[place].structure, *source->styles}, mesher);
    }

    void RunJob(Job* job, const PartSource& source, Mesher* mesher) {
        const WholeProduct& product = whole_.products[job->product];
        const std::string path = options_.folder + "/" + job->file;
        std::unique_ptr<ByteSink> sink = OpenFile(path, options_.isCompressed);
        if (product.shape[0].kind == ShapeKind::kElements) {
            job->result = WriteElements(source.file, product.name, whole_.unit, sink.get());
        } else {
            job->result = WritePart(source,
                                    {product.name, product.shape, product.turn, product.style,
                                     product.context, whole_.unit, mesher},
                                    sink.get());
        }
        // A part with nothing to show, or cut short, leaves no file: the sink isn't closed.
        const bool isKept = job->result.triangles > 0 && !job->result.isCancelled;
        if (isKept && !sink->Close()) {
            job->result.triangles = 0;
            job->error = "its file can't be written: " + sink->Error();
        } else {
            job->error.clear();
        }
    }

    static PartResult WriteElements(const ExchangeFile& file, const std::string& name, double unit,
                                    ByteSink* sink) {
        PartResult result;
        ElementMesh mesh = ReadElements(file);
        for (Vec3& node : mesh.nodes) { node = node * (1 / unit); }
        P21Writer out(sink);
        WriteElementFile(mesh, name, &out);
        result.bodies = mesh.quads.empty() ? 0 : 1;
        result.faces = mesh.quads.size();
        result.triangles = 2 * mesh.quads.size();
        for (const UndrawnElements& undrawn : mesh.undrawn) {
            result.losses.push_back(
                {name, 0, std::to_string(undrawn.count) + " elements aren't drawn: " + undrawn.kind,
                 undrawn.isShape});
        }
        return result;
    }

    void Finish() {
        std::vector<std::string> files(whole_.products.size());
        for (Job& job : jobs_) {
            const std::string& name = whole_.products[job.product].name;
            std::move(job.result.losses.begin(), job.result.losses.end(), std::back_inserter(result_.losses));
            if (!job.error.empty()) {
                result_.losses.push_back({name, 0, job.error});
            } else if (job.result.triangles == 0 && job.result.losses.empty()) {
                result_.losses.push_back({name, 0, "its shape has no triangles"});
            }
            if (job.result.triangles == 0) { continue; }
            files[job.product] = job.reference;
            ++result_.parts;
            result_.bodies += job.result.bodies;
            result_.triangles += job.result.triangles;
        }
        if (result_.parts == 0) {
            result_.error = result_.losses.empty() ? "it holds no shape" : "none of its shape came";
            return;
        }
        CountPlaces(files);
        if (!isSingle_) {
            const std::unique_ptr<ByteSink> sink = OpenFile(result_.output, options_.isCompressed);
            WriteTopFile(whole_, files, sink.get());
            if (!sink->Close()) {
                result_.error = "it can't be written: " + sink->Error();
                return;
            }
        }
        Record(files);
    }

    void CountPlaces(const std::vector<std::string>& files) {
        for (const Job& job : jobs_) {
            if (files[job.product].empty()) { continue; }
            result_.placedParts += places_[job.product];
            result_.placedTriangles += places_[job.product] * job.result.triangles;
        }
    }

    void Record(const std::vector<std::string>& files) {
        PrepareRecord record;
        record.options = OptionsLine(options_);
        const std::string& top = whole_.files[0].path;
        const bool isArchive = !whole_.files[0].member.empty();
        if (isArchive) { record.inputs.emplace_back(AbsolutePath(top), DigestOfFile(top)); }
        for (const WholeFileEntry& file : whole_.files) {
            if (!file.member.empty()) { continue; } // the archive is among them
            record.inputs.emplace_back(AbsolutePath(file.path), file.digest);
        }
        for (const std::string& path : whole_.missed) { record.inputs.emplace_back(AbsolutePath(path), ""); }
        const auto add = [&](const std::string& path) {
            record.outputs.emplace_back(path, DigestOfFile(options_.folder + "/" + path));
        };
        if (!isSingle_) { add(OutcomeName(result_.input, options_.isCompressed)); }
        for (const Job& job : jobs_) {
            if (!files[job.product].empty()) { add(job.file); }
        }
        record.result = result_;
        // Where it can't be written, the next run only does the same work again.
        WriteRecord(RecordPath(), record);
    }

    void Tell() {
        if (!tell_) { return; }
        const std::lock_guard lock(tellMutex_);
        WithinMemory([this] { tell_(done_, jobs_.size()); });
    }

    const PrepareOptions& options_;
    const TellProgress& tell_;
    const std::atomic<bool>* const cancel_;
    const std::string stem_;
    const std::string partsFolder_; // without the folder that it is in
    PrepareResult result_;
    Whole whole_;
    std::vector<std::size_t> places_; // how often each product is placed
    bool isSingle_ = false;           // the top file is the part
    std::vector<Job> jobs_;
    std::atomic<std::size_t> nextJob_{0};
    std::atomic<std::size_t> done_{0};
    SourceTexts* texts_ = nullptr;
    std::mutex tellMutex_;
};

} // namespace

bool PrepareResult::LacksShape() const {
    return !error.empty() || isCancelled || HasShapeLoss(losses);
}

std::string OutcomeName(const std::string& input, bool isCompressed) {
    return StemOf(input) + (isCompressed ? ".stpz" : ".stp");
}

PrepareResult Prepare(const std::string& input, const PrepareOptions& options, const TellProgress& tell,
                      const std::atomic<bool>* cancel) {
    return Preparation(input, options, tell, cancel).Run();
}

} // namespace tarnwick::prepare
