// Calls every function of the library and prints one hash a function; the Python tests make the same calls and compare.
// The inputs are those of vectors.py. Where a function fails, its result code alone is hashed, else its outputs in the
// order of the Python result.
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "golden/case.h"
#include "quoFPAlg.h"

namespace {

using golden::Digest;
using Bytes = std::vector<uint8_t>;

struct Frame {
  int k;  // number of the input, from which other arguments follow
  int32_t w, h;
  Bytes pixels;

  Bytes noise(int seed) const {
    quo_test::Random random(static_cast<uint64_t>(100 * k + seed));
    Bytes bytes(pixels.size());
    for (uint8_t& byte : bytes) byte = random.byte();
    return bytes;
  }
  template <typename Function>
  Bytes noise(int seed, Function change) const {
    Bytes bytes = noise(seed);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(change(byte));
    return bytes;
  }
};

int finger(int64_t x, int64_t y, int64_t w, int64_t h, int noise) {
  const int64_t dx = 2 * x - w, dy = 2 * y - h;
  const bool inside = 4 * (dx * dx * h * h + dy * dy * w * w) < 3 * w * w * h * h;
  const int phase = static_cast<int>((16 * x + 9 * y) & 127);
  return inside ? 60 + 2 * (phase < 64 ? phase : 127 - phase) + noise % 16 : 225 + noise % 8;
}

int spots(int64_t x, int64_t y, int64_t w, int64_t h, int noise) {
  const auto within = [&](int64_t left, int64_t top, int64_t side) {
    return x >= left && x < left + side && y >= top && y < top + side;
  };
  if (within(w / 2, h / 2, 6)) return 255;
  if (within(w / 4, h / 4, 4)) return noise % 4;
  return x / 2 == w / 6 || y == h / 3 ? 160 + noise % 4 : 60 + noise % 16;
}

std::vector<Frame> make_frames() {
  std::vector<Frame> frames;
  const int32_t sizes[][2] = {{96, 80}, {61, 47}, {168, 160}, {193, 192}};
  for (const auto& kind : {finger, spots}) {
    for (const auto& [w, h] : sizes) {
      Frame frame{static_cast<int>(frames.size()), w, h, Bytes(static_cast<size_t>(w * h))};
      const Bytes noise = frame.noise(0);
      for (int32_t i = 0; i < w * h; i++) {
        frame.pixels[static_cast<size_t>(i)] = static_cast<uint8_t>(kind(i % w, i / w, w, h, noise[size_t(i)]));
      }
      frames.push_back(frame);
    }
  }
  return frames;
}

const std::vector<Frame> kFrames = make_frames();

void add(Digest& digest, const Bytes& bytes) { digest.add_bytes(bytes.data(), bytes.size()); }
template <typename... Values>
void add_all(Digest& digest, const Values&... values) {
  (digest.add(values), ...);
}

// A buffer that the library handed out, zeros when there is none.
template <typename T>
void take(Digest& digest, T* block, size_t count) {
  for (size_t i = 0; i < count; i++)
    digest.add_bytes(block == nullptr ? "\0\0\0\0\0\0\0" : (char*)&block[i], sizeof(T));
  tev_quo_free(block);
}

bool failed(Digest& digest, uint32_t code) {
  if (code != 0) digest.add(code);
  return code != 0;
}
bool not_done(Digest& digest, uint32_t answer) {
  if (answer == 0) digest.add(0);
  return answer == 0;
}

void add_records(Digest& digest, const quo_block_record* blocks, int32_t count) {
  for (int32_t i = 0; i < count; i++) {
    add_all(digest, blocks[i].direction, blocks[i].mean, blocks[i].deviation, blocks[i].bright);
  }
}

void run(const char* name, const std::function<void(Digest&, const Frame&)>& call) {
  Digest digest;
  for (const Frame& frame : kFrames) call(digest, frame);
  std::printf("%s %016" PRIx64 "\n", name, digest.value());
}

// Functions of one kind.
using InPlace = std::function<uint32_t(const Frame&, uint8_t* pixels)>;
void run_in_place(const char* name, const InPlace& call) {  // by result code
  run(name, [&](Digest& d, const Frame& f) {
    Bytes pixels = f.pixels;
    if (!failed(d, call(f, pixels.data()))) add(d, pixels);
  });
}
using ToOutput = std::function<void(Digest&, const Frame&, uint8_t* output)>;
void run_to_output(const char* name, bool from_source, const ToOutput& call) {
  run(name, [&](Digest& d, const Frame& f) {
    Bytes output = from_source ? f.pixels : Bytes(f.pixels.size());
    call(d, f, output.data());
    add(d, output);
  });
}

template <auto function>
void run_quality(const char* name) {
  run(name, [](Digest& d, const Frame& f) {
    uint8_t quality, area, bright, mean = 255;
    if (failed(d, function(f.pixels.data(), f.w, f.h, &quality, &area, &bright, &mean))) return;
    add_all(d, quality, area, bright, mean);
  });
}

template <auto function>
void run_preprocessing(const char* name) {
  run(name, [](Digest& d, const Frame& f) {
    Bytes pixels = f.pixels;
    auto area = static_cast<uint8_t>(30 * f.k);
    const uint32_t code = function(pixels.data(), f.w, f.h, f.k % 3 == 0 ? 200 : 0, &area, static_cast<uint8_t>(f.k));
    if (!failed(d, code)) add(d, pixels);
    d.add(area);
  });
}

template <auto function>
void run_defect_check(const char* name) {
  run(name, [](Digest& d, const Frame& f) {
    Bytes pixels = f.pixels;
    uint8_t fail;
    if (failed(d, function(pixels.data(), f.w, f.h, 70 * f.k, &fail))) return;
    add(d, pixels);
    d.add(fail);
  });
}

template <auto function>
void run_stripes(const char* name) {
  run_to_output(name, true, [](Digest&, const Frame& f, uint8_t* out) { function(f.pixels.data(), out, f.w, f.h); });
}

void frame_functions() {
  run("FP_GetVersion", [](Digest& d, const Frame&) { d.add(FP_GetVersion()); });
  run_in_place("quo_memset", [](const Frame& f, uint8_t* p) {
    quo_memset(p, 77, static_cast<uint32_t>(f.w));
    return 0;
  });
  run_in_place("quo_memcpy", [](const Frame& f, uint8_t* p) {
    quo_memcpy(p + 5, p, static_cast<uint32_t>(f.w));
    return 0;
  });
  run("quo_sqrt", [](Digest& d, const Frame& f) { d.add(quo_sqrt(static_cast<float>(f.k * f.w) * 0.75F)); });
  run("quo_short", [](Digest& d, const Frame& f) {
    std::vector<double> values;
    for (const uint8_t byte : f.noise(1)) values.push_back(byte * -0.75);
    quo_short(values.data(), f.w);
    d.add_bytes(values.data(), size_t(f.w) * sizeof(double));
  });
  run("CalcHistogram", [](Digest& d, const Frame& f) {
    std::vector<uint32_t> bins(200);
    CalcHistogram(f.pixels.data(), f.w * f.h, bins.data(), 200);
    d.add_bytes(bins.data(), bins.size() * 4);
  });
  run("GetGrayIntegralImage", [](Digest& d, const Frame& f) {  // all but the outermost columns and rows
    std::vector<uint32_t> sums(static_cast<size_t>((f.w - 1) * (f.h - 1)));
    GetGrayIntegralImage(f.pixels.data() + f.w + 1, sums.data(), f.w - 2, f.h - 2, f.w);
    d.add_bytes(sums.data(), sums.size() * 4);
  });
  run("ZoomImg", [](Digest& d, const Frame& f) {
    Bytes half(static_cast<size_t>((f.w / 2) * (f.h / 2)));
    ZoomImg(f.pixels.data(), half.data(), f.w, f.h, f.k & 1);
    add(d, half);
  });
}

void preproc_functions() {
  run("FindBgValue", [](Digest& d, const Frame& f) {
    uint8_t bg = 0;
    FindBgValue(f.pixels.data(), f.w, f.h, &bg);
    d.add(bg);
  });
  run("GetValidArea", [](Digest& d, const Frame& f) {
    uint8_t percentage, mean;
    int32_t x, y;
    GetValidArea(f.pixels.data(), f.w, f.h, 200, &percentage, &mean, &x, &y);
    add_all(d, percentage, mean, x, y);
  });
  run("FP_GetImageBgValue", [](Digest& d, const Frame& f) {
    uint8_t bg;
    if (!failed(d, FP_GetImageBgValue(f.pixels.data(), f.w, f.h, &bg))) d.add(bg);
  });
  run("FP_GetValidArea", [](Digest& d, const Frame& f) {
    uint8_t percentage, mean;
    if (!failed(d, FP_GetValidArea(f.pixels.data(), f.w, f.h, f.k % 2 ? 190 : 0, &percentage, &mean))) {
      add_all(d, percentage, mean);
    }
  });
  run("FP_GetFingerprintInfo", [](Digest& d, const Frame& f) {
    uint8_t percentage, mean;
    int32_t x, y;
    if (failed(d, FP_GetFingerprintInfo(f.pixels.data(), f.w, f.h, &mean, &percentage, &x, &y))) return;
    add_all(d, percentage, mean, x, y);
  });
  run("FP_GetBlockValidArea", [](Digest& d, const Frame& f) {
    uint8_t m[4];
    if (!failed(d, FP_GetBlockValidArea(f.pixels.data(), f.w, f.h, &m[0], &m[1], &m[2], &m[3]))) d.add_bytes(m, 4);
  });
  run_in_place("FillBorders", [](const Frame& f, uint8_t* p) {
    FillBorders(p, f.w, f.h, static_cast<uint8_t>(f.k * 3));
    return 0;
  });
  run_stripes<RemoveVerticalStripes>("RemoveVerticalStripes");
  run_stripes<RemoveVerticalStripes_All>("RemoveVerticalStripes_All");
  run_stripes<RemoveVerticalStripes_Sector>("RemoveVerticalStripes_Sector");
  run("GetEnhanceCoef", [](Digest& d, const Frame& f) {
    d.add(GetEnhanceCoef(f.pixels.data(), static_cast<uint32_t>(f.w), static_cast<uint32_t>(f.h), 90 + f.k));
  });
  run_in_place("LocalGrayBalance_Slice", [](const Frame& f, uint8_t* p) {
    return LocalGrayBalance_Slice(p, f.w, f.h, static_cast<uint32_t>(2 + f.k), 20, 3, 1, 2);
  });
  run_preprocessing<FP_ImagePreproc>("FP_ImagePreproc");
  run_preprocessing<FP_ImagePreproc_Step1>("FP_ImagePreproc_Step1");
  run_in_place("FP_ImagePreproc_Step2", [](const Frame& f, uint8_t* p) { return FP_ImagePreproc_Step2(p, f.w, f.h); });
  run_in_place("FP_ImagePreproc_MCU",
               [](const Frame& f, uint8_t* p) { return FP_ImagePreproc_MCU(p, f.w, f.h, static_cast<uint8_t>(f.k)); });
  run_in_place("FP_ImageEnhance_Slice",
               [](const Frame& f, uint8_t* p) { return FP_ImageEnhance_Slice(p, f.w, f.h, 9 + f.k, 70); });
}

void quality_functions() {
  run_quality<FP_ImageQuality>("FP_ImageQuality");
  run_quality<FP_ImageQuality_MCU>("FP_ImageQuality_MCU");
  run_quality<ImageQuality_MCU>("ImageQuality_MCU");
  run_quality<ImageQuality>("ImageQuality");
  run("BlockOrientation_MCU", [](Digest& d, const Frame& f) {
    quo_block_record* blocks;
    int32_t count;
    if (failed(d, BlockOrientation_MCU(f.pixels.data(), f.w, f.h, &blocks, &count))) return;
    add_records(d, blocks, count);
    tev_quo_free(blocks);
  });
  run("BlockOrientation", [](Digest& d, const Frame& f) {
    quo_block_record blocks[35];
    uint8_t area;
    if (failed(d, BlockOrientation(f.pixels.data(), f.w, f.h, blocks, 7, 5, f.k, &area))) return;
    add_records(d, blocks, 35);
    d.add(area);
  });
  run("DDIndex8", [](Digest& d, const Frame& f) { d.add(DDIndex8(f.k * 25)); });
  run_to_output("Orientation", false,
                [](Digest&, const Frame& f, uint8_t* out) { Orientation(f.pixels.data(), out, f.w, f.h, f.k); });
}

void defect_functions() {
  run("CheckBadLine", [](Digest& d, const Frame& f) {
    uint32_t columns, rows;
    uint8_t *across, *down;
    if (failed(d, CheckBadLine(f.pixels.data(), f.w, f.h, 220, &columns, &rows, &across, &down))) return;
    add_all(d, columns, rows);
    take(d, across, static_cast<size_t>(f.w));
    take(d, down, static_cast<size_t>(f.h));
  });
  const auto run_count = [](const char* name, auto call) {
    run(name, [call](Digest& d, const Frame& f) {
      uint32_t count = 0;
      uint8_t* marks = nullptr;
      if (failed(d, call(f, &count, &marks))) return;
      d.add(count);
      take(d, marks, f.pixels.size());
    });
  };
  run_count("FP_GetBadLinePixelsNum", [](const Frame& f, uint32_t* count, uint8_t** marks) {
    *count = 1000;
    return FP_GetBadLinePixelsNum(f.pixels.data(), f.w, f.h, count, marks);
  });
  run_count("CheckBadPixelsNum", [](const Frame& f, uint32_t* count, uint8_t** marks) {
    return CheckBadPixelsNum(f.pixels.data(), f.w, f.h, 2 * f.k, count, marks, 210);
  });
  run_count("MyErodeEx", [](const Frame& f, uint32_t* count, uint8_t** marks) {
    MyErodeEx(f.pixels.data(), f.w, f.h, f.k, 70, 300, count, marks);
    return 0U;
  });
  run_count("FP_GetBadPixelsNum", [](const Frame& f, uint32_t* count, uint8_t** marks) {
    return FP_GetBadPixelsNum(f.pixels.data(), f.w, f.h, count, marks);
  });
  run_defect_check<FP_CheckBadPixelsNum_MCU>("FP_CheckBadPixelsNum_MCU");
  run_defect_check<FP_CheckBadPixelsNum>("FP_CheckBadPixelsNum");
}

struct Coded {
  uint8_t* bytes = nullptr;
  uint32_t size = 0;
  Coded() = default;
  Coded(const Coded&) = delete;
  ~Coded() { FP_DeleteSpTemplates(&bytes); }
};
// The template of a frame, damaged in one place when asked, in the buffer size that is safe to decode from.
Bytes sp_template(const Frame& frame, bool damaged = false) {
  Coded coded;
  FP_ExtractSpTemplates(frame.pixels.data(), uint32_t(frame.w), uint32_t(frame.h), &coded.bytes, &coded.size);
  Bytes result(coded.bytes, coded.bytes + coded.size);
  if (damaged) result[static_cast<size_t>(7 * frame.k)] ^= 9;
  result.resize(QUO_SP_MAX_READ);
  return result;
}
const Frame& other(const Frame& frame) { return kFrames[static_cast<size_t>(frame.k ^ 4)]; }  // other kind, same size

void sptemplate_functions() {
  run("AdaptiveLineBinary", [](Digest& d, const Frame& f) {
    Bytes line(f.pixels.begin(), f.pixels.begin() + f.w);
    if (!failed(d, AdaptiveLineBinary(line.data(), f.w))) add(d, line);
  });
  run("ExtractSpTemplates", [](Digest& d, const Frame& f) {
    Coded record;
    if (failed(d, ExtractSpTemplates(f.pixels.data(), f.w, f.h, &record.bytes, &record.size))) return;
    d.add_bytes(record.bytes, record.size);
  });
  run("EncodeSpTemplates", [](Digest& d, const Frame& f) {
    Coded record, coded;
    ExtractSpTemplates(f.pixels.data(), f.w, f.h, &record.bytes, &record.size);
    if (f.k == 1) record.bytes[3]++;  // a section too long
    if (!failed(d, EncodeSpTemplates(record.bytes, &coded.bytes, &coded.size))) d.add_bytes(coded.bytes, coded.size);
  });
  run("DecodeSpTemplates", [](Digest& d, const Frame& f) {
    for (const bool damaged : {false, true}) {
      Coded record;
      const Bytes bytes = sp_template(f, damaged);
      if (!failed(d, DecodeSpTemplates(bytes.data(), &record.bytes, &record.size))) {
        d.add_bytes(record.bytes, record.size);
      }
    }
  });
  run("MatchSpTemplates", [](Digest& d, const Frame& f) {
    Coded one, two, three;
    uint32_t score;
    ExtractSpTemplates(f.pixels.data(), f.w, f.h, &one.bytes, &one.size);
    ExtractSpTemplates(other(f).pixels.data(), f.w, f.h, &two.bytes, &two.size);
    ExtractSpTemplates(kFrames[0].pixels.data(), 96, 80, &three.bytes, &three.size);
    if (!failed(d, MatchSpTemplates(one.bytes, two.bytes, &score))) d.add(score);
    if (!failed(d, MatchSpTemplates(one.bytes, three.bytes, &score))) d.add(score);
  });
  run("LocalMatchSpTemplates", [](Digest& d, const Frame& f) {
    const Bytes one = f.noise(1, [](int n) { return n % 3; }), two = f.noise(2, [](int n) { return n % 3; });
    uint32_t span, equal;
    LocalMatchSpTemplates(one.data(), two.data(), static_cast<uint16_t>(one.size()), &span, &equal);
    add_all(d, span, equal);
  });
  run("FP_ExtractSpTemplates", [](Digest& d, const Frame& f) {
    Coded coded;
    if (failed(d, FP_ExtractSpTemplates(f.pixels.data(), uint32_t(f.w), uint32_t(f.h), &coded.bytes, &coded.size)))
      return;
    d.add_bytes(coded.bytes, coded.size);
  });
  run("FP_MatchSpTemplates", [](Digest& d, const Frame& f) {
    uint32_t score;
    const Bytes one = sp_template(f), two = sp_template(other(f)), damaged = sp_template(f, true);
    if (!failed(d, FP_MatchSpTemplates(one.data(), two.data(), &score))) d.add(score);
    if (!failed(d, FP_MatchSpTemplates(one.data(), damaged.data(), &score))) d.add(score);
  });
}

Bytes mask_of(const Frame& frame) {
  return frame.noise(1, [](int n) { return n > 20 ? 255 : n; });
}

void signal_functions() {
  run_in_place("GasssianSmooth", [](const Frame& f, uint8_t* p) {
    Bytes scratch(f.pixels.size());
    return 1 - GasssianSmooth(p, scratch.data(), f.w, f.h);
  });
  run("Variance", [](Digest& d, const Frame& f) { d.add(Variance(f.pixels.data(), f.w * 3 + f.k)); });
  run("ImgBlockVariance", [](Digest& d, const Frame& f) {
    double* variances;
    uint32_t across, down;
    if (failed(d, ImgBlockVariance(f.pixels.data(), f.w, f.h, 4, 12 * f.k, &variances, &across, &down))) return;
    take(d, variances, across * down);
  });
  run("FP_ComputeSNR", [](Digest& d, const Frame& f) {
    uint8_t snr, signal, noise;
    if (failed(d, FP_ComputeSNR(f.pixels.data(), uint32_t(f.w), uint32_t(f.h), &snr, &signal, &noise))) return;
    add_all(d, snr, signal, noise);
  });
  run("CreateBubbleImage", [](Digest& d, const Frame& f) {
    uint32_t count;
    uint8_t* image = nullptr;
    if (failed(d, CreateBubbleImage(f.pixels.data(), uint32_t(f.w), uint32_t(f.h), &count, &image))) return;
    d.add(count);
    take(d, image, f.pixels.size());
  });
  const auto run_erosion = [](const char* name, auto erode) {
    run(name, [erode](Digest& d, const Frame& f) {
      uint32_t count;
      const Bytes mask = mask_of(f);
      Bytes output(mask.size());
      erode(mask.data(), output.data(), f.w, f.h, f.k, &count);
      add(d, output);
      d.add(count);
    });
  };
  run_erosion("MyRectErode", MyRectErode);
  run_erosion("MyCrossErode", MyCrossErode);
}

void calibration_functions() {
  run("tev_GetFingerMean", [](Digest& d, const Frame& f) {
    uint8_t mean, coverage;
    if (!failed(d, tev_GetFingerMean(f.pixels.data(), f.w, f.h, &mean, &coverage))) add_all(d, mean, coverage);
  });
  run("tev_AutoGainDacpInside", [](Digest& d, const Frame& f) {
    const auto k = static_cast<uint8_t>(f.k);
    const quo_gain_settings in = {5, k, static_cast<uint8_t>(k % 4), 1, 100};
    quo_gain_settings out;
    if (failed(d, tev_AutoGainDacpInside(&in, &out, 120, k % 4U, 117.25 + k))) return;
    add_all(d, out.carried, out.first_stage, out.second_stage, out.third_stage, out.dac);
  });
  run("tev_AutoGainDacp", [](Digest& d, const Frame& f) {
    const uint8_t k = static_cast<uint8_t>(f.k), in[3] = {static_cast<uint8_t>(k * 29), k, 90};
    const auto mean = static_cast<uint8_t>(195 + 5 * k);
    uint8_t out[3];
    for (const uint8_t* const measured : {&mean, static_cast<const uint8_t*>(nullptr)}) {
      if (!failed(d, tev_AutoGainDacp(f.pixels.data(), f.w, f.h, measured, in, out, 120, k % 5U))) d.add_bytes(out, 3);
    }
  });
  run("FP_ChooseBestHist", [](Digest& d, const Frame& f) {
    const Bytes dark(f.pixels.size(), 3);
    const uint8_t* const choices[][3] = {{nullptr, f.pixels.data(), other(f).pixels.data()},
                                         {dark.data(), dark.data(), dark.data()},
                                         {nullptr, nullptr, dark.data()}};
    for (const auto& frames : choices) {
      uint8_t chosen;
      if (!failed(d, FP_ChooseBestHist(frames, 3, f.w, f.h, &chosen))) d.add(chosen);
    }
  });
}

void toolbox_functions() {
  run("g_DDSite", [](Digest& d, const Frame&) { d.add_bytes(g_DDSite, sizeof g_DDSite); });
  run("DDIndex", [](Digest& d, const Frame& f) { d.add(DDIndex(f.k * 25)); });
  run_in_place("OrientEnhance", [](const Frame& f, uint8_t* p) {
    return 1 - OrientEnhance(p, f.noise(1, [](int n) { return n % 182; }).data(), f.w, f.h);
  });
  run("FingerprintImageSegment", [](Digest& d, const Frame& f) {
    Bytes pixels = f.pixels;
    const int32_t count = FingerprintImageSegment(pixels.data(), f.w, f.h, 150);
    add(d, pixels);
    d.add(count);
  });
  run_in_place("BinaryThreshold", [](const Frame& f, uint8_t* p) {
    BinaryThreshold(p, f.w * f.h, 100);
    return 0;
  });
  run_to_output("AdaptiveThreshold", false, [](Digest&, const Frame& f, uint8_t* out) {
    AdaptiveThreshold(f.pixels.data(), out, f.w, f.h, 3 + f.k, f.k - 3);
  });
  const auto run_stretch = [](const char* name, auto stretch) {
    run(name, [stretch](Digest& d, const Frame& f) {
      Bytes output = f.pixels;
      const uint32_t count = stretch(f.pixels.data(), output.data(), f.w, f.h, 9, 5 + f.k);
      add(d, output);
      d.add(count);
    });
  };
  run_stretch("AreaGrayStretch", AreaGrayStretch);
  run_stretch("BlockGrayStretch", BlockGrayStretch);
  run("ValidAreaGrayStretch", [](Digest& d, const Frame& f) {
    for (Bytes pixels : {f.pixels, Bytes(f.pixels.size(), 255)}) {
      if (!not_done(d, ValidAreaGrayStretch(pixels.data(), f.w, f.h))) add(d, pixels);
    }
  });
  run("LocalGrayBalance", [](Digest& d, const Frame& f) {
    Bytes output(f.pixels.size());
    const int32_t side = 1 + 2 * f.k;  // 1 is refused
    if (!not_done(d, LocalGrayBalance(f.pixels.data(), output.data(), f.w, uint32_t(f.h), side, side))) add(d, output);
  });
  run_to_output("MedianFilter", false,
                [](Digest&, const Frame& f, uint8_t* out) { MedianFilter(f.pixels.data(), out, f.w, f.h); });
  run("RegionGrowByEightNeighbor", [](Digest& d, const Frame& f) {
    const Bytes image = f.noise(1, [](int n) { return n / 150; });
    Bytes labels = f.noise(2, [](int n) { return n < 6 ? 9 : 0; });
    uint32_t n[5];
    if (failed(d, RegionGrowByEightNeighbor(f.w / 2, f.h / 2, 3, image.data(), uint32_t(f.w), uint32_t(f.h),
                                            labels.data(), &n[0], &n[1], &n[2], &n[3], &n[4]))) {
      return;
    }
    add(d, labels);
    for (const uint32_t value : n) d.add(value);
  });
}

}  // namespace

int main() {
  frame_functions();
  preproc_functions();
  quality_functions();
  defect_functions();
  sptemplate_functions();
  signal_functions();
  calibration_functions();
  toolbox_functions();
  return 0;
}
