// Reads sampler metadata from WAV and AIFF files in memory and converts one into the other: the
// interface for C and for every language that can call C. Nothing here touches a file, prints,
// or keeps anything between calls, and no C++ exception leaves it.
//
// Every function may be called on any thread. Functions that take a handle as const may use one
// handle on several threads at once; freeing it is for the last of them. A string ends with a zero
// byte, is UTF-8, and lives as long as its handle; a code is one of the short names that never
// change, and lives for ever.
//
// Every struct starts with its size, which the caller sets:
// `corvana_loop loop = {.struct_size = sizeof loop}`. Later versions add members at the end only,
// and a library that is older than the header fills those that it does not know with zeros. Sizes
// below that of a struct's first version and above 4096 are mistakes.
#ifndef CORVANA_CORVANA_H
#define CORVANA_CORVANA_H

#include <stddef.h>
#include <stdint.h>

/// Makes a function visible outside of the shared library.
#if defined(__GNUC__)
#define CORVANA_API __attribute__((visibility("default")))
#else
#define CORVANA_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Stands for a frame, or a number of frames, that the file does not give.
#define CORVANA_NONE INT64_MIN

/// What became of a call. New values may come; whatever is not CORVANA_OK has not been done.
typedef enum corvana_status {
  CORVANA_OK = 0,
  CORVANA_END = 1,  ///< there is no loop, marker, warning or chunk of this index, no key in a name
  CORVANA_BAD_ARGUMENT = 2,  ///< a null pointer, a wrong struct_size, an unknown option, an input
                             ///< of another size than the plan's, or too little room
  CORVANA_NO_MEMORY = 3,
  CORVANA_UNSUITABLE = 4,      ///< the file is damaged, or of a kind that is not supported
  CORVANA_STOPPED = 5,         ///< the callback has refused to go on
  CORVANA_INTERNAL_ERROR = 6,  ///< a fault of the library
} corvana_status;

/// Why a call failed. Filled where the status is CORVANA_BAD_ARGUMENT or above, else left alone.
/// Wherever a function takes one it may be null.
typedef struct corvana_error {
  size_t struct_size;  ///< of the caller's struct, in bytes
  /// "format-tag", "data-chunk-missing" and so on; "bad-argument", "out-of-memory", "stopped" or
  /// "internal-error" for what is not the file's fault.
  const char* code;
  char text[256];  ///< what a person reads, in English
} corvana_error;

/// The version of the library that is running, "1.0.0" for example.
CORVANA_API const char* corvana_version(void);

// What a file holds

/// The values of members named format.
enum corvana_format { CORVANA_WAV = 1, CORVANA_AIFF = 2 };

/// The values of corvana_file_info::sample_kind.
enum corvana_sample_kind {
  CORVANA_SAMPLES_UNKNOWN = 0,
  CORVANA_SAMPLES_INTEGER = 1,
  CORVANA_SAMPLES_FLOATING_POINT = 2,
  CORVANA_SAMPLES_A_LAW = 3,
  CORVANA_SAMPLES_MU_LAW = 4,
  CORVANA_SAMPLES_COMPRESSED = 5  ///< not of equal size
};

/// The values of corvana_loop::kind.
enum corvana_loop_kind {
  CORVANA_LOOP_UNKNOWN = 0,  ///< a type that nobody has defined
  CORVANA_LOOP_FORWARD = 1,
  CORVANA_LOOP_ALTERNATING = 2,
  CORVANA_LOOP_BACKWARD = 3
};

/// The values of corvana_loop::role.
enum corvana_loop_role {
  CORVANA_ROLE_NONE = 0,  ///< WAV has no roles
  CORVANA_ROLE_SUSTAIN = 1,
  CORVANA_ROLE_RELEASE = 2
};

/// What a WAV or AIFF file holds. It does not need the file's bytes any more.
typedef struct corvana_file corvana_file;

/// Format, key and tuning. Everything as the file states it, 0 where it states nothing usable.
typedef struct corvana_file_info {
  size_t struct_size;         ///< of the caller's struct, in bytes
  uint32_t format;            ///< CORVANA_WAV or CORVANA_AIFF (AIFF-C too)
  uint32_t sample_kind;       ///< CORVANA_SAMPLES_…
  uint32_t channels;          ///< samples in a frame
  uint32_t bits;              ///< that count, per sample
  uint32_t sample_bytes;      ///< that a sample takes; 0 where samples are not of equal size
  uint32_t is_big_endian;     ///< order of the bytes of a sample: 1 or 0
  uint32_t is_unsigned;       ///< 1 where the middle of the range is silence
  uint32_t has_root_key;      ///< 1 where the file says how it is tuned, in any chunk
  double sample_rate;         ///< Hz; may be infinite or not a number in a damaged AIFF file
  uint64_t frames;            ///< that are there; 0 where unknown
  uint64_t data_offset;       ///< of the first sample byte, in bytes from the start of the file
  uint64_t data_size;         ///< sample bytes that are there
  uint64_t loop_count;        ///< that corvana_file_get_loop gives, at most 65,536
  uint64_t marker_count;      ///< that corvana_file_get_marker gives, likewise
  int64_t root_key;           ///< MIDI note nearest to the recording
  double root_cents;          ///< the correction to apply on playback
  uint32_t has_sampler;       ///< WAV: 1 where there is a smpl chunk, with the next two
  uint32_t unity_note;        ///< MIDI note
  uint32_t pitch_fraction;    ///< that the recording lies above it, in 2^32ths of a semitone
  uint32_t has_instrument;    ///< 1 where there is an inst or INST chunk, with the next seven
  int32_t base_note;          ///< MIDI note of the recording
  int32_t detune;             ///< cents, the correction to apply on playback
  int32_t low_note;           ///< MIDI note, the lowest key to play it with
  int32_t high_note;          ///< MIDI note, the highest key
  int32_t low_velocity;       ///< MIDI velocity
  int32_t high_velocity;      ///< MIDI velocity
  int32_t gain;               ///< dB
  uint32_t is_contradictory;  ///< 1 where smpl and inst speak of different pitches
} corvana_file_info;

/// A loop that is not switched off.
typedef struct corvana_loop {
  size_t struct_size;    ///< of the caller's struct, in bytes
  int64_t start;         ///< first frame; CORVANA_NONE where the marker is missing
  int64_t end;           ///< last frame, inclusive in both formats, less than `start` where there
                         ///< is no frame between them; CORVANA_NONE likewise
  int64_t type;          ///< as in the file: loop type or play mode
  uint32_t kind;         ///< CORVANA_LOOP_…
  uint32_t role;         ///< CORVANA_ROLE_…
  uint32_t number;       ///< WAV: counted from 1
  uint32_t play_count;   ///< WAV; 0 = indefinitely
  uint32_t fraction;     ///< WAV: of a frame, in 2^32ths
  uint32_t cue_id;       ///< WAV
  int32_t begin_marker;  ///< AIFF: the marker's ID
  int32_t end_marker;    ///< AIFF
} corvana_loop;

/// A marker of an AIFF file, a cue point of a WAV file.
typedef struct corvana_marker {
  size_t struct_size;  ///< of the caller's struct, in bytes
  int64_t id;          ///< not always unique
  int64_t position;    ///< the frame that follows it
  int64_t length;  ///< of the stretch that it begins, in frames; CORVANA_NONE where it begins none
  const char* name;  ///< may be empty, and may hold whatever the file does, zeros included
  size_t name_size;  ///< bytes
  const char* note;  ///< a comment, likewise
  size_t note_size;  ///< bytes
} corvana_marker;

/// Reads the complete content of a file, `size` bytes, and gives a handle in `*file`, which is null
/// after a failure. Reads whatever can be read of a damaged file, and of one that cannot be
/// converted; fails with CORVANA_UNSUITABLE only where it is neither WAV nor AIFF.
CORVANA_API corvana_status corvana_file_read(const void* bytes, size_t size, corvana_file** file,
                                             corvana_error* error);

/// Null is allowed.
CORVANA_API void corvana_file_free(corvana_file* file);

/// Fills `*info`.
CORVANA_API corvana_status corvana_file_get_info(const corvana_file* file, corvana_file_info* info);

/// Fills `*loop` with the loop of an index from 0, or gives CORVANA_END.
CORVANA_API corvana_status corvana_file_get_loop(const corvana_file* file, size_t index,
                                                 corvana_loop* loop);

/// Fills `*marker` with the marker or cue point of an index from 0, in the order of the file, or
/// gives CORVANA_END.
CORVANA_API corvana_status corvana_file_get_marker(const corvana_file* file, size_t index,
                                                   corvana_marker* marker);

// Conversion

/// Everything about the output of a conversion but its samples.
typedef struct corvana_plan corvana_plan;

/// The values of corvana_plan_options::loops.
enum corvana_loop_choice {
  CORVANA_LOOPS_ALL = 0,    ///< as many as the output's format holds
  CORVANA_LOOPS_FIRST = 1,  ///< the first one that can be used; of an AIFF file the sustain loop,
                            ///< else the release loop
  CORVANA_LOOPS_NONE = 2
};

/// The bits of corvana_plan_options::keep.
enum corvana_keep {
  CORVANA_KEEP_NAMES = 1,  ///< of markers, cue points and loops, with the notes on these
  CORVANA_KEEP_TEXTS = 2   ///< of the file as a whole, ID3 tags included
};

/// What a conversion does beyond the ordinary rules. All zeros but its size: nothing. A value that
/// is not said here is a bad argument, and so is anything but zeros in members that only the caller
/// knows.
typedef struct corvana_plan_options {
  size_t struct_size;     ///< of the caller's struct, in bytes
  uint32_t any_encoding;  ///< 1: samples that are not integers, and those of AIFF-C and RIFX that
                          ///< are stored in another way, are converted as well
  uint32_t loops;         ///< CORVANA_LOOPS_…, of the input, that the output gets
  uint32_t has_root_key;  ///< 1: the next one counts
  uint32_t root_key;      ///< MIDI note, 0 to 127, for an input that has no key of its own: neither
                      ///< smpl nor inst chunk, no INST chunk; the warning "root-from-name" says so
  uint32_t reversible;  ///< 1: the output carries what it takes to make the input of it again; an
                        ///< input that does so is made again, unless it has been edited since
  uint32_t keep;        ///< CORVANA_KEEP_…, any of them joined by |
} corvana_plan_options;

/// What a conversion will make.
typedef struct corvana_plan_info {
  size_t struct_size;       ///< of the caller's struct, in bytes
  uint32_t format;          ///< of the output
  uint32_t sample_rate;     ///< of the output, in Hz
  uint64_t output_size;     ///< bytes, of the whole output
  uint64_t frames;          ///< that are converted
  uint64_t warning_count;   ///< that corvana_plan_get_warning gives
  const char* summary;      ///< "16-bit, stereo, 44100 Hz, root key 60 (+12 ct), 2 loops"
  size_t summary_size;      ///< bytes
  uint64_t left_out_count;  ///< that corvana_plan_get_left_out gives, at most 1000; since 1.1, as
                            ///< are the next two
  uint32_t sample_kind;  ///< CORVANA_SAMPLES_…, of the output: an AIFF file whose samples are no
                         ///< integers is AIFF-C. A library of version 1.0, which leaves
                         ///< CORVANA_SAMPLES_UNKNOWN here, makes integers
  uint32_t is_restored;  ///< 1: the output is what its input was made of, to the last byte
} corvana_plan_info;

/// Something that the output cannot keep exactly.
typedef struct corvana_warning {
  size_t struct_size;  ///< of the caller's struct, in bytes
  const char* code;    ///< "loop-backward" for example
  const char* text;    ///< what a person reads, in English
  size_t text_size;    ///< bytes
} corvana_warning;

/// A chunk of the input that the output has nothing of. Since 1.1.
typedef struct corvana_left_out {
  size_t struct_size;  ///< of the caller's struct, in bytes
  const char* chunk;   ///< its ID: "bext", "LIST INFO" for a whole list, "IGNR" in a list that is
                       ///< kept otherwise; "?" stands for what is not ASCII
} corvana_left_out;

/// Gives the MIDI note that the name of a file tells ("Piano C#3.wav", "bass_a2", "60_Pad"), for
/// corvana_plan_options::root_key, or CORVANA_END. `middle_c` is the octave of note 60 in names.
/// Since 1.1.
CORVANA_API corvana_status corvana_root_key_in_name(const char* name, int32_t middle_c,
                                                    uint32_t* root_key);

/// Plans to convert the complete content of a WAV file into an AIFF file, or of an AIFF or AIFF-C
/// file into a WAV file, and gives a handle in `*plan`, which is null after a failure.
CORVANA_API corvana_status corvana_plan_make(const void* bytes, size_t size, corvana_plan** plan,
                                             corvana_error* error);

/// The same with options, or by the ordinary rules where they are null. Since 1.1.
CORVANA_API corvana_status corvana_plan_make_with(const void* bytes, size_t size,
                                                  const corvana_plan_options* options,
                                                  corvana_plan** plan, corvana_error* error);

/// Null is allowed.
CORVANA_API void corvana_plan_free(corvana_plan* plan);

/// Fills `*info`.
CORVANA_API corvana_status corvana_plan_get_info(const corvana_plan* plan, corvana_plan_info* info);

/// Fills `*warning` with the warning of an index from 0, or gives CORVANA_END.
CORVANA_API corvana_status corvana_plan_get_warning(const corvana_plan* plan, size_t index,
                                                    corvana_warning* warning);

/// Fills `*left_out` with the chunk of an index from 0, in the order of the file, each ID once, or
/// gives CORVANA_END. Since 1.1.
CORVANA_API corvana_status corvana_plan_get_left_out(const corvana_plan* plan, size_t index,
                                                     corvana_left_out* left_out);

/// Writes the whole output, corvana_plan_info::output_size bytes, to `output`, which has room for
/// `capacity` bytes and does not overlap the input. `bytes` is the content that the plan was made
/// of.
CORVANA_API corvana_status corvana_plan_carry_out(const corvana_plan* plan, const void* bytes,
                                                  size_t size, void* output, size_t capacity,
                                                  corvana_error* error);

/// Takes the next bytes of an output. `user` is what corvana_plan_carry_out_to was given. 0 goes
/// on, everything else ends the conversion. It has to return: neither jump nor throw.
typedef int (*corvana_write)(void* user, const void* bytes, size_t size);

/// Hands the whole output to `write`, from start to end in parts that are not empty, on the calling
/// thread. `bytes` is the content that the plan was made of.
CORVANA_API corvana_status corvana_plan_carry_out_to(const corvana_plan* plan, const void* bytes,
                                                     size_t size, corvana_write write, void* user,
                                                     corvana_error* error);

#ifdef __cplusplus
}
#endif

#endif
