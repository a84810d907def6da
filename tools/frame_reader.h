// The frames that the arguments of a command stand for, one after the other and never more than one in memory.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "byte_source.h"
#include "reading.h"

namespace quofp {

/** A file that an argument stands for. */
struct InputFile {
  std::string path;
  std::optional<int64_t> index = {};  // the one frame of a raw file that is meant
  std::string problem = {};           // why the argument stands for nothing
};

/** Files of a folder, numbers within their names in order of their value. @throws Failure */
std::vector<std::string> list_files(const std::string& folder);

/** Whether a file of a folder is taken for a frame, by the ending of its name. */
bool is_frame_name(const std::string& path, bool raw);

/** What the arguments stand for: files, "-" for standard input, folders (the frames in them), patterns with * ? [],
 *  and FILE#N for frame N of a raw file. */
std::vector<InputFile> expand(const std::vector<std::string>& arguments, bool raw);

class FrameReader {
 public:
  FrameReader(const std::vector<std::string>& arguments, const Reading& reading);

  /** The next frame; nothing after the last. @throws Failure for one that cannot be read, or a file; the next call goes
   *  on with the one after it */
  std::optional<Encoded> next();

  /** Passes over the next frame, or the failure in its place, reading no more of it than it must.
   *  @return whether there was one */
  bool skip();

  /** Number of frames, as far as the lengths of files tell; nothing when it cannot be known. */
  std::optional<int64_t> total() const;

 private:
  struct RawFile {
    std::string path;
    ByteSource source;
    int64_t index = 0;
  };

  std::optional<Encoded> advance(bool wanted);
  std::optional<Encoded> open(const InputFile& file, bool wanted);
  std::optional<Encoded> next_raw(bool wanted);
  void check_length(const RawFile& raw) const;
  std::optional<Encoded> take(RawFile& raw, const std::string& name, bool wanted) const;
  void check_end(RawFile& raw) const;

  Reading reading_;
  std::vector<InputFile> files_;
  size_t at_ = 0;
  std::optional<RawFile> raw_;  // that frames are being taken from
};

/** The whole of a file as a frame. */
Frame read_frame(const std::string& path, const Reading& reading = {});

}  // namespace quofp
