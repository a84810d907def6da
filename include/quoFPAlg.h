/** @file quoFPAlg.h
 *  @brief Image-processing algorithms for a fingerprint sensor.
 *
 *  The library works on raw gray frames inside the process that reads the sensor. It keeps no state between calls,
 *  starts no threads, takes no locks, opens no files and needs no initialisation: loading it makes every function
 *  callable, from any number of threads at once, as long as two calls do not share a buffer that one of them writes.
 *
 *  **Images.** A gray image is a pointer to 8-bit pixels, a width (pixels per row) and a height (rows). Rows follow one
 *  another without gaps, top row first; pixel (x, y) is the byte at y * width + x. In sensor frames the uncovered
 *  sensor is bright and flat and the finger is darker. A width or height of zero or below is an empty image unless a
 *  function says otherwise: nothing of it is read or written.
 *
 *  **Ownership.** Images and outputs belong to the caller, and no pointer is kept after a call returns. Scratch memory
 *  is taken and given back within the call. Buffers that a function hands out are the caller's from then on, who
 *  releases them with tev_quo_free(). Functions work in place only where they say so.
 *
 *  **Results.** Entry points return one of the QUO_ codes below. Operators that answer a yes/no question return 1 for
 *  yes or done and 0 for no or failed, and say so.
 *
 *  **Exactness.** Results are the same bytes on every processor and with every compiler. They are part of the contract,
 *  the last bits of quo_sqrt() included.
 */
#ifndef QUOFPALG_H
#define QUOFPALG_H

#include <stdint.h>

/** Version of the algorithm set, as FP_GetVersion() returns it. */
#define QUO_VERSION 75

/** Marks what the library exports. */
#if defined(__GNUC__)
#define QUO_API __attribute__((visibility("default")))
#else
#define QUO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @name Result codes
 *  Entry points return these; each function lists the ones it can return.
 *  @{
 */
#define QUO_OK 0u              /**< Success. */
#define QUO_NO_MEMORY 1u       /**< A buffer could not be allocated, or its byte count does not fit in 32 bits. */
#define QUO_BAD_GRID 1u        /**< ImgBlockVariance(): no block fits, or the output pointer is null. */
#define QUO_NULL_ARGUMENT 1u   /**< The tev_ calibration functions: a required pointer is null. */
#define QUO_NO_IMAGE 2u        /**< The image pointer is null. */
#define QUO_BAD_TEMPLATE 2u    /**< DecodeSpTemplates(): the template is damaged or too long. */
#define QUO_GRID_NO_MEMORY 2u  /**< ImgBlockVariance(): a buffer could not be allocated. */
#define QUO_NO_FINGER 2u       /**< tev_AutoGainDacp(): the finger's mean gray is above 220, so there is no finger. */
#define QUO_NO_OUTPUT 3u       /**< A required pointer is null. */
#define QUO_LOW_COVERAGE 5u    /**< The finger covers less of the sensor than required. */
#define QUO_TEMPLATE_MISFIT 8u /**< A template cannot be decoded, or two templates are of different frame sizes. */
#define QUO_NO_CANDIDATE 10u   /**< FP_ChooseBestHist(): no frame qualifies. */
/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Platform hooks
 *
 *  The library reaches the platform for memory and for the arctangent only through these functions. They may be
 *  interposed: a program that defines one of these names itself, visible to the dynamic linker, receives every call
 *  that the library makes.
 *  @{
 */

/** Allocates memory; forwards to the platform's malloc.
 *
 *  @param size  number of bytes
 *  @return the block, uninitialised, or null when memory is exhausted
 */
QUO_API void *tev_quo_malloc(uint32_t size);

/** Releases memory from tev_quo_malloc(); forwards to the platform's free.
 *
 *  @param block  the block, or null, which does nothing
 */
QUO_API void tev_quo_free(void *block);

/** Angle of the vector (x, y); forwards to the platform's atan2.
 *
 *  @param y  vertical component
 *  @param x  horizontal component
 *  @return radians from -pi to pi
 */
QUO_API double tev_quo_atan2(double y, double x);

/** Trace hook: does nothing unless it is interposed. An implementation must be safe to call from several threads.
 *
 *  @param tag     text that names the point reached
 *  @param length  size of the text with its terminating NUL
 */
QUO_API void tev_quo_log(const char *tag, uint32_t length);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Library primitives
 *  @{
 */

/** Version of the algorithm set. @return always QUO_VERSION */
QUO_API int32_t FP_GetVersion(void);

/** Sets bytes to a value.
 *
 *  @param destination  first byte, may be null
 *  @param value        the value to store
 *  @param count        number of bytes; 0 writes nothing
 *  @return destination
 */
QUO_API void *quo_memset(void *destination, uint8_t value, uint32_t count);

/** Copies bytes at ascending addresses, each byte before the one after it.
 *
 *  The regions may overlap, with the result of that byte loop: a destination that starts d bytes above the source, less
 *  than count, receives the first d source bytes over and over. This is neither memcpy nor memmove.
 *
 *  @param destination  first byte written, may be null
 *  @param source       first byte read, may be null
 *  @param count        number of bytes; 0 copies nothing
 *  @return destination; null, with nothing copied, when either pointer is null
 */
QUO_API void *quo_memcpy(void *destination, const void *source, uint32_t count);

/** Approximate square root in single precision.
 *
 *  The reciprocal of the fast inverse square root: a first guess from the bits of x, then three Newton steps. It
 *  differs from the exact root in its last bits, for perfect squares too (quo_sqrt(49) is 6.9999995), and thresholds
 *  elsewhere in the library follow these values.
 *
 *  @param x  a value of 0 or more; other values give what the steps produce
 *  @return about the root of x; about 2.2e-20 for 0
 */
QUO_API float quo_sqrt(float x);

/** Sorts doubles in place into ascending order, stably.
 *
 *  A NaN stays where it is, and no value passes one: the values between two NaNs are sorted on their own.
 *
 *  @param values  count values; not read when count is 1 or less
 *  @param count   number of values
 */
QUO_API void quo_short(double *values, int32_t count);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Image statistics and resampling
 *  @{
 */

/** Counts the gray levels of an image.
 *
 *  @param pixels     count pixels, may be null
 *  @param count      number of pixels; 0 or less counts nothing
 *  @param histogram  bins counters, may be null; cleared, then counter v receives the number of pixels of value v
 *  @param bins       number of counters, 256 to count every value; pixels of bins or above are not counted
 *  @return 1, or 0 with nothing written when pixels or histogram is null
 */
QUO_API uint8_t CalcHistogram(const uint8_t *pixels, int32_t count, uint32_t *histogram, uint32_t bins);

/** Builds the summed-area table of an image, from which the sum over any rectangle takes four lookups.
 *
 *  Entry (X, Y) is the sum of the pixels with x < X and y < Y, so row 0 and column 0 are zero. Sums are modulo 2^32.
 *  F. C. Crow, "Summed-area tables for texture mapping", SIGGRAPH 1984.
 *
 *  @param source    top left pixel of the region
 *  @param integral  (width + 1) x (height + 1) sums, rows of width + 1; written
 *  @param width     columns of the region; below 0 nothing is done
 *  @param height    rows of the region; below 0 nothing is done
 *  @param stride    bytes from one source row to the next
 */
QUO_API void GetGrayIntegralImage(const uint8_t *source, uint32_t *integral, int32_t width, int32_t height,
                                  int32_t stride);

/** Halves an image in both directions.
 *
 *  Subsampling takes every second pixel of every second row. Smoothed halving takes the 3 x 3 binomial mean around
 *  those pixels, truncated; its first and last rows and columns are copied from the edges of the source.
 *
 *  @param source       width x height gray image
 *  @param destination  (width / 2) x (height / 2) gray image, not overlapping source; written
 *  @param width        pixels per source row; below 2 nothing is done. Of an odd size, the outputs that fit are
 *  written.
 *  @param height       source rows; as width
 *  @param mode         0 subsamples, any other value smooths
 */
QUO_API void ZoomImg(const uint8_t *source, uint8_t *destination, int32_t width, int32_t height, uint8_t mode);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Capture preprocessing
 *
 *  Blocks are 8 x 8 pixels. A block is valid, that is finger, when its mean is below the background value.
 *  @{
 */

/** Estimates the gray level of the background from the four corners of a frame.
 *
 *  Looks at four 8 x 8 patches, each two pixels from two edges of the frame. A patch is background when its variance is
 *  below 50 and its mean is above 160, or more than 100 above that of the darkest patch. The value is 0.93 of the mean
 *  of the background patches, truncated.
 *
 *  @param image   width x height gray image
 *  @param width   pixels per row; below 10 nothing is read and none is found
 *  @param height  rows; as width
 *  @param bg_out  receives the value, 93 or more; may be null; left as it is when none is found
 *  @return 1 when a background was found, 0 when none was
 */
QUO_API uint8_t FindBgValue(const uint8_t *image, int32_t width, int32_t height, uint8_t *bg_out);

/** Measures the valid blocks of a frame: how much of it the finger covers, how dark it is, and where it lies.
 *
 *  Blocks lie side by side from the top left corner; the pixels right of the last whole block and below it belong to
 *  none. All quotients truncate. Outputs are written in the order mean, percentage, centre.
 *
 *  @param image           width x height gray image
 *  @param width           pixels per row
 *  @param height          rows
 *  @param bg              background value
 *  @param percentage_out  valid blocks per hundred, 0 to 100; may be null
 *  @param mean_out        mean of the valid blocks' pixels, 255 when no block is valid; may be null. The sum of the
 *                         pixels is taken modulo 2^32, so it is right up to 16,843,009 valid pixels.
 *  @param centre_x_out    mean left column of the valid blocks, 0 when no block is valid; may be null
 *  @param centre_y_out    mean top row of the valid blocks, likewise. Both name corners of blocks, not their middles.
 *  @return always 0
 */
QUO_API uint8_t GetValidArea(const uint8_t *image, int32_t width, int32_t height, uint8_t bg, uint8_t *percentage_out,
                             uint8_t *mean_out, int32_t *centre_x_out, int32_t *centre_y_out);

/** Background value of a frame, by FindBgValue().
 *
 *  @param image   width x height gray image, may be null
 *  @param width   pixels per row
 *  @param height  rows
 *  @param bg_out  receives the value, 255 when none is found; may be null
 *  @return QUO_OK; QUO_NO_OUTPUT, with nothing written, when image or bg_out is null
 */
QUO_API uint32_t FP_GetImageBgValue(const uint8_t *image, int32_t width, int32_t height, uint8_t *bg_out);

/** Share of a frame that the finger covers, and its mean gray level, by GetValidArea().
 *
 *  @param image           width x height gray image
 *  @param width           pixels per row
 *  @param height          rows
 *  @param bg              background value; 0 to have it estimated, with 255 when none is found
 *  @param percentage_out  valid blocks per hundred; must not be null
 *  @param mean_out        mean of the valid blocks' pixels, 255 when no block is valid; may be null
 *  @return QUO_OK; QUO_NO_OUTPUT, with nothing written, when percentage_out is null
 */
QUO_API uint32_t FP_GetValidArea(const uint8_t *image, int32_t width, int32_t height, uint8_t bg,
                                 uint8_t *percentage_out, uint8_t *mean_out);

/** Gray level, coverage and centre of the finger in a frame, by GetValidArea() with the estimated background value, or
 *  255 when none is found. The mean comes before the percentage here.
 *
 *  @param image           width x height gray image
 *  @param width           pixels per row
 *  @param height          rows
 *  @param mean_out        mean of the valid blocks' pixels, 255 when no block is valid; may be null
 *  @param percentage_out  valid blocks per hundred; may be null
 *  @param centre_x_out    mean left column of the valid blocks, 0 when no block is valid; may be null
 *  @param centre_y_out    mean top row of the valid blocks, likewise
 *  @return always QUO_OK
 */
QUO_API uint32_t FP_GetFingerprintInfo(const uint8_t *image, int32_t width, int32_t height, uint8_t *mean_out,
                                       uint8_t *percentage_out, int32_t *centre_x_out, int32_t *centre_y_out);

/** Mean gray level of the finger in each quarter of a frame; a quarter that the finger leaves empty reports 255.
 *
 *  Quarters are (width / 2) x (height / 2) pixels; of odd sizes the last column or row belongs to none. The background
 *  value is estimated once, from the whole frame, with 255 when none is found. Scratch memory of one quarter.
 *
 *  @param frame         width x height gray image
 *  @param width         pixels per row
 *  @param height        rows
 *  @param top_left      receives the mean of the valid blocks' pixels of this quarter; null when it is not asked for
 *  @param top_right     likewise
 *  @param bottom_left   likewise
 *  @param bottom_right  likewise
 *  @return QUO_OK; QUO_NO_MEMORY with nothing written
 */
QUO_API uint32_t FP_GetBlockValidArea(const uint8_t *frame, int32_t width, int32_t height, uint8_t *top_left,
                                      uint8_t *top_right, uint8_t *bottom_left, uint8_t *bottom_right);

#define QUO_BORDER_TOP 1u    /**< Border flag: the first row. */
#define QUO_BORDER_BOTTOM 2u /**< Border flag: the last row. */
#define QUO_BORDER_LEFT 4u   /**< Border flag: the first column. */
#define QUO_BORDER_RIGHT 8u  /**< Border flag: the last column. */

/** Replaces border lines of an image, in place, by copies of the lines inside them.
 *
 *  Rows come before columns: where both meet, the corner becomes a copy of the pixel diagonally inside it.
 *
 *  @param image   width x height gray image, changed in place
 *  @param width   pixels per row; the columns of an image one pixel wide are left alone
 *  @param height  rows; likewise
 *  @param flags   sum of QUO_BORDER_ flags; other bits have no effect
 */
QUO_API void FillBorders(uint8_t *image, int32_t width, int32_t height, uint8_t flags);

/** The same as RemoveVerticalStripes_All(). @copydetails RemoveVerticalStripes_All */
QUO_API uint8_t RemoveVerticalStripes(const uint8_t *source, uint8_t *destination, int32_t width, int32_t height);

/** Removes vertical stripes: columns brighter or darker than those around them.
 *
 *  The mean of a column over its pixels up to 234 (255 when it has none) is compared with the mean of the means of the
 *  four columns on either side, and the difference is taken off those pixels, with the results kept within 0 to 254.
 *  Pixels of 235 and above, the first five columns and the last four are copied. Scratch memory of at
 *  most seven bytes a column.
 *
 *  @param source       width x height gray image
 *  @param destination  width x height gray image, written; may be source, otherwise not overlapping it
 *  @param width        pixels per row
 *  @param height       rows; the sum of a column is modulo 2^32, which 18,354,562 rows reach at the earliest
 *  @return 1 when done, 0 when scratch memory could not be allocated (nothing is written)
 */
QUO_API uint8_t RemoveVerticalStripes_All(const uint8_t *source, uint8_t *destination, int32_t width, int32_t height);

/** Removes vertical stripes at fixed places: the second and the third column of every sector of 16.
 *
 *  The mean of the column over its pixels below 255 (255 when it has none) is compared with the mean of itself and its
 *  two neighbours, and the difference is taken off those pixels, with the results kept within 0 to 254. Where the
 *  difference is 0, and everywhere else, the destination is not written. Scratch memory of four bytes a sector.
 *
 *  @param source       width x height gray image
 *  @param destination  width x height gray image; source itself, or a copy of it
 *  @param width        pixels per row; columns after the last whole sector are left alone
 *  @param height       rows
 *  @return 1 when done, 0 when scratch memory could not be allocated (nothing is written)
 */
QUO_API uint8_t RemoveVerticalStripes_Sector(const uint8_t *source, uint8_t *destination, int32_t width,
                                             int32_t height);

/** Gain that brings the gray levels of the finger to a common spread.
 *
 *  The spread is the mean absolute deviation of the pixels below 230 from their mean, both rounded down; their sums are
 *  taken modulo 2^32.
 *
 *  @param image   width x height gray image, may be null
 *  @param width   pixels per row
 *  @param height  rows; no pixel is counted when there are more than 2^31 - 1
 *  @param target  the spread wished for, in gray levels
 *  @return target / spread + 0.5, to be truncated; 0 when target is 0; 1 when no pixel is below 230 or the spread is 0
 */
QUO_API double GetEnhanceCoef(const uint8_t *image, uint32_t width, uint32_t height, int32_t target);

/** Evens out brightness and stretches contrast in place, one band of rows after the other.
 *
 *  Every pixel p below 254 becomes 128 + gain * (p - m), limited to 0..255, where m is the truncated mean of the pixels
 *  of the same band within radius of it, in both directions, before any of them was changed. Constant work per pixel,
 *  whatever the radius. Scratch memory of (width + 1) x (band_rows + 1) x 4 bytes.
 *
 *  @param image           width x height gray image, changed in place
 *  @param width           pixels per row
 *  @param height          rows
 *  @param radius          half the size of the neighbourhood; 3 for 7 x 7 pixels, for which the code is fastest
 *  @param band_rows       rows of a band; 0 for one band of all rows
 *  @param gain            contrast gain; below 2 nothing is done
 *  @param top_context     rows at the top of every band that feed the means but are not changed
 *  @param bottom_context  rows at the bottom of every band, likewise
 *  @return QUO_OK; QUO_NO_MEMORY with the image unchanged
 */
QUO_API uint8_t LocalGrayBalance_Slice(uint8_t *image, int32_t width, int32_t height, uint32_t radius,
                                       uint32_t band_rows, uint8_t gain, uint8_t top_context, uint8_t bottom_context);

/** Cleans a captured frame in place: FP_ImagePreproc_Step1(), then FP_ImagePreproc_Step2().
 *
 *  @param frame         width x height gray image, changed in place; may be null
 *  @param width         pixels per row
 *  @param height        rows
 *  @param bg            background value; 0 to have it estimated, with 255 when none is found
 *  @param area          on entry the coverage required, in per cent; receives the coverage measured. Null to do
 *                       without.
 *  @param border_flags  border lines to replace, a sum of QUO_BORDER_ flags
 *  @return QUO_OK, or the first failure of the two steps
 */
QUO_API uint32_t FP_ImagePreproc(uint8_t *frame, int32_t width, int32_t height, uint8_t bg, uint8_t *area,
                                 uint8_t border_flags);

/** First step of the preprocessing: replaces border lines, checks the coverage, removes vertical stripes.
 *
 *  Traces "FP_ImagePreproc_Step1", "FillBorders" and "RemoveVerticalStripes" as it gets there, and
 *  "FP_ImagePreproc_Step1_FunEnd" on every return.
 *
 *  @param frame         as for FP_ImagePreproc(), like the others
 *  @param width         pixels per row
 *  @param height        rows
 *  @param bg            background value or 0
 *  @param area          coverage required and measured, or null
 *  @param border_flags  border lines to replace, a sum of QUO_BORDER_ flags
 *  @return QUO_OK; QUO_NO_IMAGE when frame is null; QUO_LOW_COVERAGE, with the borders replaced and area written, when
 *          the finger covers less than required; QUO_NO_MEMORY, likewise, when the stripes could not be removed
 */
QUO_API uint32_t FP_ImagePreproc_Step1(uint8_t *frame, int32_t width, int32_t height, uint8_t bg, uint8_t *area,
                                       uint8_t border_flags);

/** Second step of the preprocessing: balances the gray levels of the whole frame over neighbourhoods of 7 x 7 pixels,
 *  with the gain of GetEnhanceCoef() for a spread of 100.
 *
 *  Afterwards it takes a buffer of width x height bytes and gives it back at once, as a sign that what follows can have
 *  one. Traces "FP_ImagePreproc_Step2_FunEnd" on every return.
 *
 *  @param frame   width x height gray image, changed in place; may be null
 *  @param width   pixels per row
 *  @param height  rows
 *  @return QUO_OK; QUO_NO_IMAGE when frame is null; QUO_NO_MEMORY when the balance had no scratch memory (the frame is
 *          unchanged) or the buffer could not be had (the frame is balanced)
 */
QUO_API uint32_t FP_ImagePreproc_Step2(uint8_t *frame, int32_t width, int32_t height);

/** Cleans a captured frame in place, borders and vertical stripes only. Traces nothing.
 *
 *  @param frame         width x height gray image, changed in place; may be null
 *  @param width         pixels per row
 *  @param height        rows
 *  @param border_flags  border lines to replace, a sum of QUO_BORDER_ flags
 *  @return QUO_OK; QUO_NO_IMAGE when frame is null; QUO_NO_MEMORY, with the borders replaced, when the stripes could
 *          not be removed
 */
QUO_API uint32_t FP_ImagePreproc_MCU(uint8_t *frame, int32_t width, int32_t height, uint8_t border_flags);

/** Balances the gray levels of a frame in place, as FP_ImagePreproc_Step2() does, in slices, to bound scratch memory.
 *
 *  The result is the same for every slice_rows. Scratch memory is what LocalGrayBalance_Slice() takes for slice_rows +
 *  6 rows and 6 x width bytes more; for a frame of at most slice_rows, what it takes for the whole frame.
 *
 *  @param frame       width x height gray image, changed in place; may be null, which does nothing
 *  @param width       pixels per row
 *  @param height      rows
 *  @param slice_rows  rows per slice; below 3 taken as 3
 *  @param target      the spread wished for, in gray levels, as for GetEnhanceCoef(); the gain is the low 8 bits of
 *                     the truncated coefficient, 0 for a negative one
 *  @return QUO_OK, also when the gain is below 2 and nothing is done; QUO_NO_MEMORY, with the slices balanced by then
 */
QUO_API uint32_t FP_ImageEnhance_Slice(uint8_t *frame, int32_t width, int32_t height, int32_t slice_rows,
                                       int32_t target);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Image quality and orientation
 *
 *  Two quality scores, both from 0 to 100. The sensor score, FP_ImageQuality(), looks at a few pixels of every block
 *  and is cheap enough for every captured frame; ImageQuality() works on the dense orientation field of the half-size
 *  frame. Each merges three component scores (direction, contrast, brightness), weighing a component by the square of
 *  what it lacks, so that the weakest one decides. A frame without any fault, whose components are all 100, scores 0.
 *  @{
 */

/** What is known about one block of a frame. */
typedef struct quo_block_record {
  int8_t direction; /**< -1 background, 0 finger without a dominant direction, 1 to 8 its direction; see the function */
  double mean;      /**< mean gray */
  double deviation; /**< mean absolute deviation from the mean */
  double bright;    /**< percentage of pixels brighter than mean + 3.5, truncated; a whole number from 0 to 100 */
} quo_block_record;

/** Scores a captured frame: ImageQuality_MCU() with a check of the image pointer.
 *
 *  @param image      width x height gray image, may be null
 *  @param width      pixels per row
 *  @param height     rows
 *  @param quality    receives the score, 0 to 100, 0 without a block that is not background; may be null
 *  @param area       receives the percentage of blocks that are not background; may be null
 *  @param bright     receives the average bright percentage of those blocks, truncated; may be null
 *  @param mean_gray  receives the average of their means, truncated; may be null; not written without such a block
 *  @return QUO_OK; QUO_NO_MEMORY or, for a null image, QUO_NO_OUTPUT, both with nothing written
 */
QUO_API uint32_t FP_ImageQuality(const uint8_t *image, int32_t width, int32_t height, uint8_t *quality, uint8_t *area,
                                 uint8_t *bright, uint8_t *mean_gray);

/** The same as FP_ImageQuality(). @copydetails FP_ImageQuality */
QUO_API uint32_t FP_ImageQuality_MCU(const uint8_t *image, int32_t width, int32_t height, uint8_t *quality,
                                     uint8_t *area, uint8_t *bright, uint8_t *mean_gray);

/** Scores a frame from the records of BlockOrientation_MCU(), the array of which is its only memory.
 *
 *  Direction: the share of finger blocks with a dominant direction. Contrast: up to 60 for deviations that are alike
 *  and up to 40 for their average, full at 30. Brightness: up to 60 for means that are alike and up to 40 for an
 *  average close to 128.
 *
 *  @param image      width x height gray image
 *  @param width      pixels per row
 *  @param height     rows
 *  @param quality    receives the score, 0 to 100; may be null
 *  @param area       receives the percentage of blocks that are not background; may be null
 *  @param bright     receives the average bright percentage of those blocks, truncated; may be null
 *  @param mean_gray  receives the average of their means, truncated; may be null. Without a finger block the other
 *                    three are 0 and this one is not written.
 *  @return QUO_OK, or QUO_NO_MEMORY with nothing written
 */
QUO_API uint32_t ImageQuality_MCU(const uint8_t *image, int32_t width, int32_t height, uint8_t *quality, uint8_t *area,
                                  uint8_t *bright, uint8_t *mean_gray);

/** Cuts a frame into square blocks and measures each from a sparse sample.
 *
 *  The side of a block is 16 pixels when the shorter side of the frame has 192 or more, 10 from 160 on, else 8; the
 *  columns and rows that remain at the right and at the bottom belong to no block. Mean, deviation and bright
 *  percentage come from 16 samples a block (25 in blocks of 10), without those of value 255. A block that is bright and
 *  flat (mean 180 or more, deviation below 10), or that has no sample below 255, is background.
 *
 *  The direction code 1 + d names the line d * 22.5 degrees from horizontal, roughly, counted counter-clockwise, along
 *  which the gray varies least around the block centre: 1 horizontal, 3 rising to the right, 5 vertical, 7 falling. It
 *  is 0 when the deviation is 6 or less, when no line stands out, or when the frame is smaller than the test's 13 x 13
 *  pixels.
 *
 *  @param image   width x height gray image
 *  @param width   pixels per row
 *  @param height  rows
 *  @param blocks  receives the records, row by row, for the caller to release with tev_quo_free(); of a frame smaller
 *                 than a block an array of no records
 *  @param count   receives the number of records
 *  @return QUO_OK; QUO_NO_MEMORY, or 2 when blocks or count is null, both with nothing written
 */
QUO_API uint32_t BlockOrientation_MCU(const uint8_t *image, int32_t width, int32_t height, quo_block_record **blocks,
                                      int32_t *count);

/** Summarises the orientation field of the half-size frame block by block.
 *
 *  The field is that of Orientation(), except that a pixel whose window holds too little horizontal gradient (20 for
 *  each pixel of a whole window, also at the edges, where windows are cut) has no orientation: it is background when
 *  its gray is above 179, flat otherwise. Horizontal ridges count as flat, since only the horizontal derivative is
 *  summed.
 *
 *  A block is width / nbx / 2 half-size pixels wide and height / nby / 2 high, each division rounded down; what remains
 *  at the right and at the bottom belongs to no block. It takes its direction from a histogram of its pixels that are
 *  not background, in nine bins: flat, then the eight of DDIndex8(). The direction code is the number of the fullest
 *  bin when it holds more than 80 % of them, else 0: 1 horizontal, 3 falling to the right, 5 vertical, 7 rising. Flat
 *  blocks have 0 too. A block with less than 80 % (rounded down) of such pixels is background, with a mean of 255.
 *  Mean, deviation and bright percentage are over the block's half-size pixels, in a block with background pixels over
 *  those below 255; all three are 0 when there are none.
 *
 *  @param image   width x height gray image; of odd sizes, the half that ZoomImg() makes is used
 *  @param width   pixels per row
 *  @param height  rows
 *  @param blocks  nbx x nby records, written row by row; all background when nbx is above width / 2 or nby above
 *                 height / 2
 *  @param nbx     blocks per row; 0 or less writes no records
 *  @param nby     block rows; 0 or less writes no records
 *  @param radius  the window is 2 * radius + 1 half-size pixels wide and high; negative counts as 0
 *  @param area    receives the percentage of half-size pixels that are not background, 0 for an empty frame; may be
 *                 null
 *  @return QUO_OK, or QUO_NO_MEMORY with nothing written
 */
QUO_API uint32_t BlockOrientation(const uint8_t *image, int32_t width, int32_t height, quo_block_record *blocks,
                                  int32_t nbx, int32_t nby, int32_t radius, uint8_t *area);

/** Bin of an orientation among eight.
 *
 *  @param orientation  degrees
 *  @return 0 below 11 and above 168, otherwise (orientation - 11) / 23 + 1, from 1 to 7
 */
QUO_API uint32_t DDIndex8(int32_t orientation);

/** Scores a frame from its dense orientation field: the records of BlockOrientation() for (width / 8) x (height / 8)
 *  blocks and a radius of 3.
 *
 *  Direction: the share of blocks with a direction code other than 0. Contrast: up to 40 for deviations that are alike
 *  and up to 60 for their average, full at 30. Brightness: falls with the mean difference between the means of the
 *  blocks, but is full where that is from 100 to 150. Without a block that is not background, quality and bright are 0.
 *
 *  @param image      width x height gray image
 *  @param width      pixels per row
 *  @param height     rows
 *  @param quality    receives the score, 0 to 100; may be null
 *  @param area       receives the percentage of half-size pixels that are not background; may be null
 *  @param bright     receives the average bright percentage of the blocks that are not background, truncated; may be
 *                    null
 *  @param mean_gray  receives the average of their means, truncated; may be null; not written without such a block
 *  @return QUO_OK; or QUO_NO_MEMORY, with quality and bright 0 and the others not written
 */
QUO_API uint32_t ImageQuality(const uint8_t *image, int32_t width, int32_t height, uint8_t *quality, uint8_t *area,
                              uint8_t *bright, uint8_t *mean_gray);

/** Ridge orientation of every pixel, in whole degrees.
 *
 *  Sobel gradients of the smoothed half-size frame, doubled in angle, averaged over a square window and halved again;
 *  the result is enlarged by repeating pixels. The cost does not depend on the radius. Sums are modulo 2^32, exact for
 *  windows of up to 1,000 pixels and in practice for far larger ones. When tev_quo_atan2()
 *  is interposed, it is called once for each half-size pixel, rows first, and its angles decide.
 *  M. Kass and A. Witkin, "Analyzing oriented patterns", CVGIP 37, 1987.
 *
 *  @param image   width x height gray image
 *  @param output  width x height bytes, may be image itself; receives 0 to 179, the angle from the x axis (right)
 *                 towards the y axis (down), 135 where there is no gradient. Odd sizes repeat the last column and row.
 *  @param width   pixels per row, at least 2
 *  @param height  rows, at least 2
 *  @param radius  the window is 2 * radius + 1 half-size pixels wide and high; negative counts as 0
 *  @return 1 when done; 0, with nothing written, when output is null, memory could not be allocated, or a size is below
 *          2
 */
QUO_API uint32_t Orientation(const uint8_t *image, uint8_t *output, int32_t width, int32_t height, int32_t radius);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Sensor defect inspection
 *
 *  Line defects are whole columns or rows that read differently from those beside them. Bad pixels read much darker
 *  than the rest of the frame and lie in clusters. Mark images hold 255 at a defect and 0 elsewhere.
 *  @{
 */

/** Finds line defects in a frame from the sums of its columns and rows.
 *
 *  A line is dark when its mean is below 0.9 of the reference. The inspected span runs from the first to the last dark
 *  line, the first two lines and the last three left out. Inside it a line whose mean differs from that of the line
 *  before by more than 50 gray levels (for columns also by exactly 50) is a jump: a band of marked lines begins there
 *  and ends before the next jump or the end of the span. The first and the last line of the span are never marked.
 *
 *  The ends of the span are 8-bit indices: in a frame of more than 258 lines they are taken modulo 256. Lines of more
 *  than 16,843,009 pixels have sums modulo 2^32. Scratch memory of four bytes a line, and a byte a line for the marks.
 *
 *  @param image          width x height gray image
 *  @param width          pixels per row; in a frame of 4 or fewer columns no column is marked
 *  @param height         rows; as width
 *  @param reference      gray level of the uncovered sensor; above 230 taken as 230
 *  @param column_pixels  receives the number of pixels on marked columns; may be null
 *  @param row_pixels     receives the number of pixels on marked rows; may be null
 *  @param column_marks   receives width bytes, 1 for a column on a defect and 0 otherwise, to be released with
 *                        tev_quo_free(); may be null
 *  @param row_marks      receives height bytes for the rows, likewise
 *  @return QUO_OK; QUO_NO_MEMORY with nothing written
 */
QUO_API uint32_t CheckBadLine(const uint8_t *image, int32_t width, int32_t height, uint8_t reference,
                              uint32_t *column_pixels, uint32_t *row_pixels, uint8_t **column_marks,
                              uint8_t **row_marks);

/** Counts the pixels on line defects of a frame, by CheckBadLine() with a reference of 220, and marks them.
 *
 *  @param image        width x height gray image
 *  @param width        pixels per row
 *  @param height       rows
 *  @param line_pixels  increased by the number of pixels on marked columns and on marked rows; a pixel on both counts
 *                      twice. The caller sets it first; must not be null.
 *  @param mark_image   receives a width x height mark image, to be released with tev_quo_free(); may be null
 *  @return QUO_OK; QUO_NO_OUTPUT, with nothing done, when line_pixels is null; QUO_NO_MEMORY with line_pixels unchanged
 *          and an empty mark image; QUO_NO_MEMORY with a null mark image when that alone, or that too, found no memory
 */
QUO_API uint32_t FP_GetBadLinePixelsNum(const uint8_t *image, int32_t width, int32_t height, uint32_t *line_pixels,
                                        uint8_t **mark_image);

/** Counts the bad pixels of a frame: pixels far below the mean of its dark levels, in clusters.
 *
 *  Dark levels are those below level_limit. The threshold is 2.3 standard deviations below their mean, but above the
 *  lowest level that occurs; mean and variance are integers, the root is quo_sqrt(), sums are modulo 2^32. MyErodeEx()
 *  then counts the clusters below the threshold, with a border of 2. Nothing is counted when no pixel is dark, when
 *  more than 0.3 of the dark pixels have the lowest level, or when the frame passes anyway: when no more pixels than
 *  the allowance are below the threshold, and the frame has more pixels than the allowance.
 *
 *  @param image        width x height gray image; one of 2^31 pixels or more is not inspected
 *  @param width        pixels per row
 *  @param height       rows
 *  @param allowance    number of bad pixels at which counting goes on; it stops at the next one
 *  @param bad_pixels   receives the count, 0 when nothing is counted; must not be null
 *  @param mark_image   receives the mark image of MyErodeEx(); may be null; left as it is when nothing is counted
 *  @param level_limit  the gray levels below are dark: the background value
 *  @return always QUO_OK
 */
QUO_API uint32_t CheckBadPixelsNum(const uint8_t *image, int32_t width, int32_t height, int32_t allowance,
                                   uint32_t *bad_pixels, uint8_t **mark_image, uint8_t level_limit);

/** Counts the pixels below a threshold that have a neighbour below it, above, below, left or right.
 *
 *  Pixels are inspected row by row, and counting stops as soon as the count exceeds the allowance, so with an allowance
 *  of 0 or more the count is at most allowance + 1 and the marks are those of the pixels counted.
 *
 *  @param image       width x height gray image
 *  @param width       pixels per row
 *  @param height      rows
 *  @param border      lines at each edge that are not inspected, though they serve as neighbours; below 0 taken as 0.
 *                     Outside the image nothing is below the threshold.
 *  @param threshold   gray level
 *  @param allowance   the largest count at which counting goes on; below 0 it stops at the first pixel
 *  @param count       receives the count; may be null
 *  @param mark_image  receives a width x height mark image of the pixels counted, to be released with tev_quo_free(),
 *                     or null when it could not be allocated, while the pixels are counted all the same; may be null
 */
QUO_API void MyErodeEx(const uint8_t *image, int32_t width, int32_t height, int32_t border, uint8_t threshold,
                       int32_t allowance, uint32_t *count, uint8_t **mark_image);

/** Measures the defects of a frame and marks them.
 *
 *  Bad pixels are counted by CheckBadPixelsNum() on the half-size subsampled frame, each standing for four pixels, line
 *  defects by CheckBadLine() on the frame itself, both with the background value of the half-size frame as reference,
 *  255 when none is found. Scratch memory of a quarter of the frame, and what the two functions take.
 *
 *  @param frame          width x height gray image
 *  @param width          pixels per row
 *  @param height         rows
 *  @param defect_pixels  receives four times the bad pixels plus the pixels on line defects; must not be null
 *  @param mark_image     receives a width x height mark image of all defects, to be released with tev_quo_free(); may
 *                        be null. A bad pixel is a block of 2 x 2; in a frame of odd size its marks in the last column
 *                        or row are repeated once more.
 *  @return QUO_OK; QUO_NO_OUTPUT, with nothing done, when defect_pixels is null; QUO_NO_MEMORY when memory could not be
 *          allocated: with nothing written if for the half-size frame, with bad pixels alone counted and marked if for
 *          the line detection, with the count complete and a null mark image if for that. Half-size marks that cannot
 *          be allocated are not an error, and missing from the mark image.
 */
QUO_API uint32_t FP_GetBadPixelsNum(const uint8_t *frame, int32_t width, int32_t height, uint32_t *defect_pixels,
                                    uint8_t **mark_image);

/** Decides whether the defects of a frame stay within an allowance, and repairs its line defects when they do.
 *
 *  Finds the defects as FP_GetBadPixelsNum() does, counting no further than it must. The frame fails when four times
 *  the bad pixels exceed the allowance, or the pixels on line defects do; both may use all of it. When it passes, its
 *  marked columns, then its marked rows, become copies of the line before, so that a band becomes a copy of the sound
 *  line beside it.
 *
 *  @param frame      width x height gray image; its line defects are repaired in place when it passes
 *  @param width      pixels per row
 *  @param height     rows
 *  @param allowance  the largest number of defect pixels with which the frame passes
 *  @param fail       receives 1 when the frame fails and 0 when it passes; must not be null
 *  @return QUO_OK; QUO_NO_OUTPUT, with nothing done, when fail is null; QUO_NO_MEMORY with the frame unchanged and fail
 *          0, or 1 when the half-size frame could not be allocated and the allowance is negative
 */
QUO_API uint32_t FP_CheckBadPixelsNum_MCU(uint8_t *frame, int32_t width, int32_t height, int32_t allowance,
                                          uint8_t *fail);

/** The same as FP_CheckBadPixelsNum_MCU(). @copydetails FP_CheckBadPixelsNum_MCU */
QUO_API uint32_t FP_CheckBadPixelsNum(uint8_t *frame, int32_t width, int32_t height, int32_t allowance, uint8_t *fail);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Sp templates
 *
 *  A compact description of a frame by six binarised line profiles: rows 12, height / 2 and height - 12, then columns
 *  12, width / 2 and width - 12, each without its first and last 12 pixels. Two frames are compared profile by profile,
 *  position by position and without any shift, so they must show the finger at the same place.
 *
 *  A *profile record* holds the profiles as they are compared: a version byte, the payload length T = 3 x (width +
 *  height - 44), then T bytes of sections, each a length and that many profile bytes. An *Sp template* is its
 *  run-length coded form, the one byte format that is meant to be stored. All lengths are 16-bit big-endian.
 *  docs/sp-template-format.md describes both byte by byte.
 *  @{
 */

/** Bytes that DecodeSpTemplates() and FP_MatchSpTemplates() read of a template at most, whatever the bytes are. Bytes
 *  from storage that may be damaged or cut short are safe to decode from a buffer of this size, filled up with zeros.
 */
#define QUO_SP_MAX_READ 2042u

/** Binarises a line of pixels in place against its sliding local mean.
 *
 *  A pixel brighter than the truncated mean of the 31 pixels around it (those of them inside the line) becomes 255, any
 *  other 0; pixels of 254 and 255 stay as they are. Scratch memory of 2 x (n + 1) 32-bit sums; constant work per pixel.
 *
 *  @param line  n pixels, overwritten
 *  @param n     number of pixels; 0 or less does nothing and succeeds
 *  @return QUO_OK, or QUO_NO_MEMORY with the line unchanged
 */
QUO_API uint32_t AdaptiveLineBinary(uint8_t *line, int32_t n);

/** Samples the six profiles of a frame and binarises them into a profile record.
 *
 *  @param frame   width x height gray image
 *  @param width   pixels per row, above 24
 *  @param height  rows, above 24
 *  @param record  receives the record of T + 3 bytes, for tev_quo_free(); may be null, then the record is made and
 *                 freed
 *  @param size    receives T + 3; may be null
 *  @return QUO_OK, or QUO_NO_MEMORY with nothing written: no memory, a width or height of 24 or less, or a frame so
 *          large that T exceeds 65535 (width + height above 21889)
 */
QUO_API uint32_t ExtractSpTemplates(const uint8_t *frame, int32_t width, int32_t height, uint8_t **record,
                                    uint32_t *size);

/** Codes a profile record as an Sp template.
 *
 *  @param record       a profile record: its sections fill its T bytes exactly and none is empty. T may be up to 65535,
 *                      but templates of T above 1020 cannot be decoded again.
 *  @param sp_template  receives the template, for FP_DeleteSpTemplates(); may be null, then nothing is written
 *  @param size         receives the template's length in bytes; may be null
 *  @return QUO_OK, or QUO_NO_MEMORY with nothing written: no memory, or not a profile record
 */
QUO_API uint32_t EncodeSpTemplates(const uint8_t *record, uint8_t **sp_template, uint32_t *size);

/** Decodes an Sp template into the profile record that it was made from.
 *
 *  The template may hold any bytes. Its own layout says where it ends: of a valid template no byte beyond its end is
 *  read, of any other at most QUO_SP_MAX_READ bytes in all. The record is never written beyond its T + 3 bytes.
 *
 *  @param sp_template  the template
 *  @param record       receives the record of T + 3 bytes, for tev_quo_free(); may be null, then it is made and freed
 *  @param size         receives T + 3; may be null
 *  @return QUO_OK; QUO_NO_MEMORY; or QUO_BAD_TEMPLATE: T is above 1020, a section or run does not fit in what remains
 *          of the record, a run's count is 0, or the version is not 0 and the last byte does not repeat it. Unless
 *          QUO_OK, nothing is written.
 */
QUO_API uint32_t DecodeSpTemplates(const uint8_t *sp_template, uint8_t **record, uint32_t *size);

/** Scores how alike two profile records are.
 *
 *  Every section is scored by the share of its dark positions (profile value 0) that are dark in both records, in
 *  percent; a section counts when more than a third of its positions are dark in at least one. The score mixes the
 *  share over all sections (7 / 10) with the best section (3 / 10). That share is 0 unless more
 *  than a third of all positions are dark in at least one record; one of 49 or less is doubled when the standard
 *  deviation of the section scores, by quo_sqrt(), is 30 or more, trebled from 45 on. Of the section scores the first
 *  ten enter the deviation.
 *
 *  @param first   a profile record; its section lengths may be anything, nothing beyond its T + 3 bytes is read
 *  @param second  as first
 *  @param score   receives 0 to 100; may be null
 *  @return 0, or 1 with nothing written when the records do not fit together: another version, T or section length, or
 *          a section that reaches beyond T + 3
 */
QUO_API uint32_t MatchSpTemplates(const uint8_t *first, const uint8_t *second, uint32_t *score);

/** Compares two profiles over the stretch from the first to the last position that is dark (0) in either.
 *
 *  @param first   n profile bytes
 *  @param second  n profile bytes
 *  @param n       positions
 *  @param span    receives the length of the stretch; 0 when fewer than two positions are dark
 *  @param equal   receives the number of positions in it where both profiles hold the same byte
 */
QUO_API void LocalMatchSpTemplates(const uint8_t *first, const uint8_t *second, uint16_t n, uint32_t *span,
                                   uint32_t *equal);

/** Makes the Sp template of a frame.
 *
 *  @param frame        width x height gray image
 *  @param width        pixels per row, above 24
 *  @param height       rows, above 24; width + height at most 384, or the template cannot be matched
 *  @param sp_template  receives the template, for FP_DeleteSpTemplates(); when null, nothing is done
 *  @param size         receives the template's length in bytes; may be null
 *  @return QUO_OK, or QUO_NO_MEMORY with nothing written: no memory, or a size that ExtractSpTemplates() refuses
 */
QUO_API uint32_t FP_ExtractSpTemplates(const uint8_t *frame, uint32_t width, uint32_t height, uint8_t **sp_template,
                                       uint32_t *size);

/** Releases an Sp template and forgets it.
 *
 *  @param sp_template  pointer to the template, set to null; not null itself. A template of null does nothing.
 */
QUO_API void FP_DeleteSpTemplates(uint8_t **sp_template);

/** Scores how alike two Sp templates are, as MatchSpTemplates() does.
 *
 *  @param first   a template; any bytes, see DecodeSpTemplates()
 *  @param second  as first
 *  @param score   receives 0 to 100; may be null
 *  @return QUO_OK, or QUO_TEMPLATE_MISFIT with nothing written: a template cannot be decoded, for want of memory too,
 *          or the two are of different versions or frame sizes
 */
QUO_API uint32_t FP_MatchSpTemplates(const uint8_t *first, const uint8_t *second, uint32_t *score);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Signal analysis
 *
 *  FP_ComputeSNR() and CreateBubbleImage() look at the same blocks: 16 x 16 pixels inside a margin of 4. They take
 *  frames of at least 16 pixels in both directions; of a frame below 20 the blocks begin at the edge.
 *  @{
 */

/** Smooths a gray image in place with the 3 x 3 binomial kernel: a row pass, then a column pass, of (1, 2, 1) / 4.
 *
 *  Each pass truncates to an integer, so the result is not the rounded two-dimensional convolution. The missing
 *  neighbour of a border pixel is the mirror image of the other one across it; in a single row or column it is the
 *  pixel itself. The name is spelled this way.
 *
 *  @param image    width x height gray image; read, then overwritten with the result
 *  @param scratch  width x height bytes, not overlapping image; afterwards the result of the row pass alone
 *  @param width    pixels per row; below 1 nothing is done
 *  @param height   rows; below 1 nothing is done
 *  @return 1 when done; 0, with nothing written, when 4 x width bytes could not be allocated
 */
QUO_API uint32_t GasssianSmooth(uint8_t *image, uint8_t *scratch, int32_t width, int32_t height);

/** Population variance of gray values: the mean squared deviation from their mean.
 *
 *  Two passes in double precision, each step of the second one fused multiply-add. For counts that are powers of two
 *  up to 4096, a block of 16 x 16 among them, the result is the exact variance.
 *
 *  @param data   count gray values, may be null
 *  @param count  number of values
 *  @return the variance; 0 when data is null or count is 0 or less
 */
QUO_API double Variance(const uint8_t *data, int32_t count);

/** Variance() of every block of a gray image: its local contrast.
 *
 *  Square blocks tile the image inside a margin. There are as many as cover it, rounded up; the last of each row and
 *  column of blocks is moved back to end at the inner edge of the margin, over its neighbour. A block that would then
 *  begin before the image begins at its edge.
 *
 *  @param image          width x height gray image
 *  @param width          pixels per row, at least size and above 2 x margin
 *  @param height         rows, as width
 *  @param margin         pixels left out along each of the four edges
 *  @param size           pixels along the side of a block, at least 1
 *  @param variances      receives an array of blocks_across x blocks_down values, rows of blocks from the top, which
 *                        the caller releases with tev_quo_free(); required
 *  @param blocks_across  receives the number of blocks in a row, may be null
 *  @param blocks_down    receives the number of rows of blocks, may be null
 *  @return QUO_OK; QUO_BAD_GRID when the sizes leave no block or variances is null; QUO_GRID_NO_MEMORY when size x size
 *          bytes or the array could not be allocated. On failure nothing is written.
 */
QUO_API uint32_t ImgBlockVariance(const uint8_t *image, int32_t width, int32_t height, uint8_t margin, int32_t size,
                                  double **variances, uint32_t *blocks_across, uint32_t *blocks_down);

/** Rates a frame by its ratio of signal to noise.
 *
 *  The signal is what GasssianSmooth() keeps of the frame, the noise what it takes away. A block of variances s of the
 *  signal and n of the noise has the ratio 10 s / (n + 1). The frame's ratio is the median, of an even number of blocks
 *  the upper middle one; the amplitudes are those of the first block with that ratio.
 *
 *  @param frame   width x height gray image
 *  @param width   pixels per row, at least 16
 *  @param height  rows, at least 16
 *  @param snr     receives the ratio, truncated and at most 255; required
 *  @param signal  receives the root of 10 s, rounded and at most 255; may be null
 *  @param noise   receives the root of n + 1, rounded and at most 255; may be null
 *  @return QUO_OK; QUO_NO_OUTPUT when snr is null; QUO_NO_MEMORY when a buffer could not be allocated or the frame is
 *          too small. Only with QUO_OK anything is written.
 */
QUO_API uint32_t FP_ComputeSNR(const uint8_t *frame, uint32_t width, uint32_t height, uint8_t *snr, uint8_t *signal,
                               uint8_t *noise);

/** Finds bubbles: blobs well above the frame's gray level.
 *
 *  A pixel is bright when its gray reaches the frame's mean plus four standard deviations, the deviation being the root
 *  of the median block variance. The threshold is at most 255, except in a frame whose deviation is above 60 and of
 *  which more than a tenth is 255: there it may pass 255, and nothing is bright. Bubble pixels are the bright ones
 *  among bright neighbours: MyRectErode() with a border of 2.
 *
 *  @param frame         width x height gray image
 *  @param width         pixels per row, at least 16; 0 is an empty frame
 *  @param height        rows, as width
 *  @param count         receives the number of bubble pixels, 0 on failure; may be null
 *  @param bubble_image  receives a width x height image, 255 at bubble pixels and 0 elsewhere, which the caller
 *                       releases with tev_quo_free(); left alone when there are no bright pixels and on failure; may be
 *                       null
 *  @return QUO_OK, for an empty frame too; QUO_NO_MEMORY when a buffer could not be allocated, the frame is too small,
 *          or it has more than INT32_MAX pixels
 */
QUO_API uint32_t CreateBubbleImage(const uint8_t *frame, uint32_t width, uint32_t height, uint32_t *count,
                                   uint8_t **bubble_image);

/** Erodes a mask with a 3 x 3 square: keeps the set pixels all of whose eight neighbours are set.
 *
 *  @param mask    width x height bytes, of which only 255 counts as set
 *  @param output  width x height bytes, not overlapping mask; kept pixels become 255, the others stay as they are
 *  @param width   pixels per row
 *  @param height  rows
 *  @param border  pixels along each edge that are not kept and not written; below 1 it counts as 1
 *  @param count   receives the number of kept pixels, may be null
 */
QUO_API void MyRectErode(const uint8_t *mask, uint8_t *output, int32_t width, int32_t height, int32_t border,
                         uint32_t *count);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Sensor calibration
 *
 *  The analogue front end has three gain stages, each set by an index, and a DAC that shifts the output level:
 *
 *  | Index        | 0 | 1 | 2 | 3   | 4 | 5 | 6    | 7  |
 *  |--------------|---|---|---|-----|---|---|------|----|
 *  | First stage  | 1 | 2 | 4 | 5.6 | 7 | 8 | 11.3 | 14 |
 *  | Second stage | 1 | 2 | 3 | 4   |   |   |      |    |
 *  | Third stage  | 1 | 2 | 3 | 4   |   |   |      |    |
 *
 *  Modes 1 and 2 are those of sensors whose mean gray rises with the DAC value; in every other mode it falls.
 *  @{
 */

/** Settings of the analogue front end. */
typedef struct quo_gain_settings {
  uint8_t carried;      /**< not a setting of the front end; handed through */
  uint8_t first_stage;  /**< gain index 0 to 7 */
  uint8_t second_stage; /**< gain index 0 to 3 */
  uint8_t third_stage;  /**< gain index 0 to 3 */
  uint8_t dac;          /**< DAC value */
} quo_gain_settings;

/** Measures the finger in a frame: the 8 x 8 blocks, from the top left corner, whose mean gray is below 220.
 *
 *  @param frame     width x height gray image, may be null
 *  @param width     pixels per row; only whole blocks count
 *  @param height    rows, as width
 *  @param mean      receives the mean gray of the finger blocks, truncated, or 255 when there are none; may be null
 *  @param coverage  receives the percentage of finger blocks among all, truncated, 0 when there are none; may be null
 *  @return QUO_OK, or QUO_NULL_ARGUMENT with nothing written when frame is null
 */
QUO_API uint32_t tev_GetFingerMean(const uint8_t *frame, int32_t width, int32_t height, uint8_t *mean,
                                   uint8_t *coverage);

/** The DAC value that brings a mean gray to a target at the present gains.
 *
 *  One step of the DAC moves the mean by 0.145 gray levels times the three gains, up or down by mode.
 *
 *  @param settings_in   the present settings, required; of the indices only the low 3, 2 and 2 bits are looked at
 *  @param settings_out  receives the settings with the new DAC value, truncated and limited to 0..255, 0 for a mean
 *                       that is not a number; may be settings_in
 *  @param target        the wanted mean gray
 *  @param mode          the kind of sensor
 *  @param mean          the measured mean gray
 *  @return QUO_OK, or QUO_NULL_ARGUMENT when settings_out is null
 */
QUO_API uint32_t tev_AutoGainDacpInside(const quo_gain_settings *settings_in, quo_gain_settings *settings_out,
                                        uint8_t target, uint32_t mode, double mean);

/** New settings of the front end, packed in three bytes, that bring the finger's mean gray to a target.
 *
 *  The gains stay; the DAC value moves as tev_AutoGainDacpInside() says. Bits of the packed settings, the lowest first:
 *
 *  | Mode      | Byte 0                                | Byte 1                           | Byte 2 |
 *  |-----------|---------------------------------------|----------------------------------|--------|
 *  | 2 or 3    | 3 first stage, 2 second stage, 3 none | not used, third stage 0          | DAC    |
 *  | any other | 3 carried, 3 first stage, 2 second    | 2 third stage, 6 carried through | DAC    |
 *
 *  The new settings are packed by the second layout in every mode; the carried bits of byte 0 are 0 in modes 2 and 3.
 *
 *  @param frame          width x height gray image; read only when measured_mean is null
 *  @param width          pixels per row
 *  @param height         rows
 *  @param measured_mean  the finger's mean gray; null has it measured by tev_GetFingerMean()
 *  @param packed_in      the three bytes of the present settings; required
 *  @param packed_out     receives the three bytes of the new settings; may be packed_in; required
 *  @param target         the wanted mean gray
 *  @param mode           the kind of sensor
 *  @return QUO_OK; QUO_NULL_ARGUMENT when a required pointer is null, the frame too if it must be measured;
 *          QUO_NO_FINGER when the mean is above 220. Only with QUO_OK anything is written.
 */
QUO_API uint32_t tev_AutoGainDacp(const uint8_t *frame, int32_t width, int32_t height, const uint8_t *measured_mean,
                                  const uint8_t *packed_in, uint8_t *packed_out, uint8_t target, uint32_t mode);

/** Chooses, of several frames, the one with the best distribution of gray levels.
 *
 *  Of each frame's histogram, with bins of 16 bits that count modulo 65536, dark pixels are those of 0 to 14, low ones
 *  of 15 to 127, high ones of 128 to 199; brighter ones take part in nothing. Shares are percentages of dark, low and
 *  high pixels together; the deviation is the mean absolute deviation of low and high pixels from their mean. The class
 *  is the first that fits:
 *
 *  | Class        | Condition                                                             |
 *  |--------------|-----------------------------------------------------------------------|
 *  | unclassified | null, no low or high pixels, or at most 1000 dark, low and high ones  |
 *  | dark         | more than 25 % dark                                                   |
 *  | contrasted   | deviation at least 15                                                 |
 *  | flat bright  | below 10 % low                                                        |
 *  | flat mid     | deviation above 10                                                    |
 *  | flat         | the rest                                                              |
 *
 *  The choice is the first that applies: the contrasted frame with the largest share of low pixels, if that is above 0,
 *  the earliest of equals; the last frame when all are dark; the dark one when one is dark and at least one flat
 *  bright; the flat mid one when one is flat mid and at least one dark.
 *
 *  @param frames  count pointers to width x height gray images; null entries are passed over
 *  @param count   number of frames; of 0 frames the choice is 255
 *  @param width   pixels per row
 *  @param height  rows
 *  @param chosen  receives the index of the chosen frame, may be null
 *  @return QUO_OK, or QUO_NO_CANDIDATE with nothing written when no choice applies
 */
QUO_API uint32_t FP_ChooseBestHist(const uint8_t *const *frames, uint8_t count, int32_t width, int32_t height,
                                   uint8_t *chosen);

/** @} */

/* ------------------------------------------------------------------------------------------------------------------ */
/** @name Image operator toolbox
 *
 *  Operators that no entry point calls. Unless one says otherwise, pointers are not tested, outputs do not overlap
 *  inputs, and an empty image is left alone.
 *  @{
 */

/** The sites of each direction class: seven pixel offsets (dx, dy) on a line through the pixel.
 *
 *  Class k stands for 15 * k degrees, from the direction of increasing x towards that of increasing y. Site 3 is
 *  (0, 0); three lie on each side of it, at most 3 pixels away, and site 6 - i is site i mirrored.
 */
QUO_API extern const int32_t g_DDSite[12][7][2];

/** Direction class of an angle.
 *
 *  @param degrees  0 to 180, where 0 and 180 are the same direction
 *  @return k from 1 to 11 for 15 * k - 7 to 15 * k + 7 degrees; 0 for 0 to 7, for 173 to 180, and out of range
 */
QUO_API uint32_t DDIndex(int32_t degrees);

/** Enhances ridges along a given direction field, in place.
 *
 *  Each pixel is averaged over the seven sites along its direction; the averaged image is then filtered across the
 *  direction with the weights -3, -1, 3, 9, 3, -1, -3. The first step closes small gaps in a line, the second sets the
 *  line off against its flanks. Sites outside the image are left out of sum and divisor. Results are 0 to 254.
 *
 *  @param image       width x height gray image
 *  @param directions  width x height bytes, the direction at each pixel in degrees as for DDIndex(); above 180
 *                     counts as 0
 *  @param width       pixels per row
 *  @param height      rows
 *  @return 1 when done, also for an empty image; 0 when scratch memory of the size of the image could not be allocated
 *          (nothing is written)
 */
QUO_API uint32_t OrientEnhance(uint8_t *image, const uint8_t *directions, int32_t width, int32_t height);

/** Marks the background around a fingerprint with 255, in place.
 *
 *  From each end of every row, then of every column, bright pixels are marked up to the first pixel that is dark,
 *  marked already, or bright between dark pixels eight lines away on both sides (a valley of the print). The two
 *  outermost pixels of a line are marked with the first one marked beside them. What remains unmarked is the print.
 *  Pixels that were 255 before become 254 first.
 *
 *  @param image      width x height gray image
 *  @param width      pixels per row
 *  @param height     rows
 *  @param threshold  a pixel is bright above it, dark otherwise; above 253 nothing is marked
 *  @return width * height less one for each pixel marked, where the two outermost pixels of a line count every time
 *          that they are marked: the number of unmarked pixels as long as no such pair is marked twice, below it
 *          otherwise, and possibly negative. 0 when the rows alone bring it to 0 or below; the columns are not done
 *          then.
 */
QUO_API int32_t FingerprintImageSegment(uint8_t *image, int32_t width, int32_t height, int32_t threshold);

/** Binarises bytes in place: 255 above the threshold, 0 otherwise.
 *
 *  @param data       count bytes
 *  @param count      number of bytes; below 1 nothing is done
 *  @param threshold  gray level
 *  @return data
 */
QUO_API uint8_t *BinaryThreshold(uint8_t *data, int32_t count, uint8_t threshold);

/** Binarises an image against its local mean.
 *
 *  A pixel becomes 255 when it is above the mean of the square window around it less the offset, or when the standard
 *  deviation of the window is below 3, and 0 otherwise. At the edges the window is moved inwards, so that it stays
 *  whole.
 *
 *  @param source  width x height gray image
 *  @param output  width x height bytes; every one is written
 *  @param width   pixels per row
 *  @param height  rows
 *  @param window  side of the window; taken as 1 below 1, and as the smaller of width and height above that
 *  @param offset  gray levels
 */
QUO_API void AdaptiveThreshold(const uint8_t *source, uint8_t *output, int32_t width, int32_t height, int32_t window,
                               int32_t offset);

/** Stretches the contrast of each pixel against the extremes of the window around it.
 *
 *  Pixels of 255 are background: they are copied, and left out of every window. A pixel is stretched, from the range of
 *  its window to 0..254, where the pixels of the window differ from it by more than 1 on average; else it is copied.
 *  Pixels of 0 are not written: the caller prepares the output, for example as a copy of the source.
 *
 *  @param source         width x height gray image
 *  @param output         width x height bytes, not overlapping the source
 *  @param width          pixels per row
 *  @param height         rows
 *  @param window_width   odd, an even width acts as the next smaller odd one and one below 1 as 1; sizes
 *                        beyond 65536 count modulo 131072, and every pixel is copied where that leaves less than 1
 *  @param window_height  as the width
 *  @return number of pixels stretched
 */
QUO_API uint32_t AreaGrayStretch(const uint8_t *source, uint8_t *output, int32_t width, int32_t height,
                                 int32_t window_width, int32_t window_height);

/** Stretches the contrast of each block of a grid from its own range to 0..254.
 *
 *  A block covers one column more than its width, which it shares with the next; there the later block's values remain.
 *  Blocks whose values span 10 or less are not written: the caller prepares the output, for example as a copy of the
 *  source.
 *
 *  @param source        width x height gray image
 *  @param output        width x height bytes
 *  @param width         pixels per row
 *  @param height        rows
 *  @param block_width   columns from one block to the next; below 1 nothing is done
 *  @param block_height  rows of a block; below 1 nothing is done
 *  @return number of pixels written, those of a shared column once for each block that wrote them
 */
QUO_API uint32_t BlockGrayStretch(const uint8_t *source, uint8_t *output, int32_t width, int32_t height,
                                  int32_t block_width, int32_t block_height);

/** Stretches an image in place, so that all but the darkest and the brightest thousandth of it fill 0..254.
 *
 *  Pixels of 255 are background: they are neither counted nor changed.
 *
 *  @param image   width x height gray image, of at most INT32_MAX pixels
 *  @param width   pixels per row
 *  @param height  rows
 *  @return 1 when done, also when there was nothing to stretch; 0 with the image unchanged when no pixel is below 255,
 *          when the image has too many, or when scratch memory of 1024 bytes could not be allocated
 */
QUO_API uint32_t ValidAreaGrayStretch(uint8_t *image, int32_t width, int32_t height);

/** Evens out brightness and contrast over an image.
 *
 *  Each pixel is moved halfway from the mean of the window around it towards the mean of the image; its distance from
 *  the local mean is then scaled so that the mean absolute deviation of the image becomes 50, and the mean of the image
 *  moved to 128. Pixels of 255 are background: they are copied and count as the mean of the image in every window.
 *  Windows and statistics leave out the outermost row and column on each side; the pixels there are balanced too.
 *  Results are 0 to 254.
 *
 *  LocalGrayBalance_Slice() is another operator: integer arithmetic, a gain of the caller's choice, in place.
 *
 *  @param source         width x height gray image
 *  @param output         width x height bytes
 *  @param width          pixels per row
 *  @param height         rows
 *  @param window_width   odd, an even width acts as the next smaller odd one; at least 3. Sizes beyond 65536 count
 *                        modulo 131072.
 *  @param window_height  as the width
 *  @return 1 when every pixel was written; 0 with nothing written when scratch memory (twice 4 bytes a pixel) could not
 *          be allocated, when a window size is out of range, when the image is smaller than 3 x 3, or when its pixels
 *          below 255, the outermost left out, are all equal or none
 */
QUO_API uint32_t LocalGrayBalance(const uint8_t *source, uint8_t *output, int32_t width, uint32_t height,
                                  int32_t window_width, int32_t window_height);

/** Median of the 3 x 3 neighbourhood of each pixel; removes impulse noise.
 *
 *  At the border the neighbourhood is what exists of it; of an even number of values the lower of the middle two is
 *  taken.
 *
 *  @param source       width x height gray image
 *  @param destination  width x height bytes, written; source itself, or not overlapping it. With source itself nothing
 *                      is done when scratch memory of the size of the image cannot be allocated.
 *  @param width        pixels per row
 *  @param height       rows
 */
QUO_API void MedianFilter(const uint8_t *source, uint8_t *destination, int32_t width, int32_t height);

/** Erodes a mask with a cross: a set pixel stays when its four direct neighbours are set too.
 *
 *  Only 255 counts as set; neighbours outside the image count as set. MyRectErode() takes the whole 3 x 3 square.
 *
 *  @param mask    width x height mask
 *  @param output  width x height bytes, may be null; receives 255 at each pixel that stays, elsewhere it keeps what the
 *                 caller put there
 *  @param width   pixels per row
 *  @param height  rows
 *  @param border  number of outermost rows and columns left out on each side; below 0 taken as 0
 *  @param count   receives the number of pixels that stay; may be null
 */
QUO_API void MyCrossErode(const uint8_t *mask, uint8_t *output, int32_t width, int32_t height, int32_t border,
                          uint32_t *count);

/** Grows a region from a seed over the pixels of the seed's gray value, eight neighbours a pixel, and labels it.
 *
 *  Pixels that carry a label already do not join, nor do the two outermost rows and columns on each side; the seed may
 *  have a label and may lie there.
 *
 *  @param seed_x  column of the seed
 *  @param seed_y  row of the seed
 *  @param label   the low 8 bits are the label, not 0
 *  @param image   width x height gray image
 *  @param width   pixels per row
 *  @param height  rows
 *  @param labels  width x height labels, 0 where there is none; the region receives the label
 *  @param count   receives the number of pixels of the region, the seed included; may be null, as the following
 *  @param min_x   receives the first column of the region
 *  @param min_y   receives the first row of the region
 *  @param max_x   receives the last column of the region
 *  @param max_y   receives the last row of the region
 *  @return QUO_OK; QUO_NO_MEMORY with nothing written when scratch memory (two bytes a pixel; eight for an image of
 *          more than 256 columns or rows) could not be allocated, and also for a seed outside the image, a label of 0,
 *          or a width or height above 2^31 - 1
 */
QUO_API uint32_t RegionGrowByEightNeighbor(int32_t seed_x, int32_t seed_y, uint32_t label, const uint8_t *image,
                                           uint32_t width, uint32_t height, uint8_t *labels, uint32_t *count,
                                           uint32_t *min_x, uint32_t *min_y, uint32_t *max_x, uint32_t *max_y);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
