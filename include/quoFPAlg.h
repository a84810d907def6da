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
#define QUO_OK 0u           /**< Success. */
#define QUO_NO_MEMORY 1u    /**< A buffer could not be allocated, or its byte count does not fit in 32 bits. */
#define QUO_NO_IMAGE 2u     /**< The image pointer is null. */
#define QUO_NO_OUTPUT 3u    /**< A required pointer is null. */
#define QUO_LOW_COVERAGE 5u /**< The finger covers less of the sensor than required. */
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
 *  @param x  a value of 0 or more; quo_sqrt(0) is about 2.2e-20. Other values give what the steps produce.
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
/* Capture preprocessing */

/* ------------------------------------------------------------------------------------------------------------------ */
/* Image quality and orientation */

/* ------------------------------------------------------------------------------------------------------------------ */
/* Sensor defect inspection */

/* ------------------------------------------------------------------------------------------------------------------ */
/* Sp templates */

/* ------------------------------------------------------------------------------------------------------------------ */
/* Signal analysis */

/* ------------------------------------------------------------------------------------------------------------------ */
/* Sensor calibration */

/* ------------------------------------------------------------------------------------------------------------------ */
/* Image operator toolbox */

#ifdef __cplusplus
}
#endif

#endif
