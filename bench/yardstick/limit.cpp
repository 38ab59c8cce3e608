// limit: how fast one thread can do the album's reduced sizes with libjpeg-turbo.
//
//   limit [options] PHOTODIR OUTDIR
//     -j N         N forked worker processes (default 1)
//     -q N         quality of the encoded levels (default 100)
//     --box WxH    bounding box that decides the number of levels (1024x768)
//     -r COUNT     the user's quarter turns clockwise for every photo (default 0)
//     --plain      the straightforward whole-image pipeline instead (same bytes)
//     --stream     row-pair cascade over the library's RGB scanlines (same bytes)
//                  (without either: the planar pipeline of limit_raw.h: raw YCbCr
//                  in and out, own SIMD upsampling, colour conversion, halving and
//                  downsampling in one pass; 4:2:0 and 4:2:2 photos, others stream)
//     --rotate-only   only level 0: a lossless turn by -r COUNT of every photo
//     --exif-only     only read the EXIF blocks (orientation, thumbnail place)
//     --no-write      does everything but write the files
//     --timers        prints where the time went
//     --repeat N      does the whole directory N times (for profiling)
//
// For each .jpg of PHOTODIR: size0 = byte copy (or lossless turn); one decode;
// level k = k halvings with a 2x2 box (sum of four, >> 2), encoded with
// libjpeg's defaults (4:2:0, baseline, slow-accurate integer DCT) at the given
// quality with the source's APPn and COM segments; thumb = the EXIF thumbnail's
// bytes (turned upright losslessly when the orientation asks for it) or, where
// there is none, two more halvings, encoded without segments.
//
// Rows pair from the bottom of the picture, as buffers are stored bottom-up: an
// odd height drops the top row.  An odd width drops the last column.
//
// The default mode never holds a whole image: each row pair that the decoder
// delivers is halved while it is in the first-level cache, the halved row goes
// into a strip of its level's encoder, every second one halves again, and so on
// down the cascade.  All encoders run at once, buffers live as long as the
// process, and the input is a mapped file.

#include <dirent.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>
// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>
#ifdef __x86_64__
#include <immintrin.h>
// The functions in between use AVX2; main() asks the processor before it calls one.
#ifdef __clang__
#define BEGIN_AVX2 _Pragma("clang attribute push(__attribute__((target(\"avx2\"))), apply_to = function)")
#define END_AVX2 _Pragma("clang attribute pop")
#else
#define BEGIN_AVX2 _Pragma("GCC push_options") _Pragma("GCC target(\"avx2\")")
#define END_AVX2 _Pragma("GCC pop_options")
#endif
#endif

namespace {

// ---------------------------------------------------------------- options --
struct Options {
    int jobs = 1, quality = 100, turn = 0, repeat = 1;
    unsigned boxw = 1024, boxh = 768;
    bool plain = false, stream = false, rotate_only = false, exif_only = false, write = true, timers = false;
    std::string in, out;
} opt;

// ----------------------------------------------------------------- timers --
enum Stage { ST_MAP, ST_COPY, ST_TURN, ST_DECODE, ST_HALVE, ST_ENCODE, ST_WRITE, ST_THUMB, ST_N };
const char* const stage_name[ST_N] = {"open+map", "size0 copy", "lossless turn", "decode",
                                      "halve",    "encode",     "write levels",  "thumb"};
struct Counters {
    uint64_t t[ST_N], total, photos, failed, bytes_in, bytes_out, pixels;
} cnt;
inline uint64_t ticks() {
#ifdef __x86_64__
    return __rdtsc();
#else
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1000000000ull + t.tv_nsec;
#endif
}
struct Timer {  // exclusive: a nested timer's ticks are not the outer's
    static Timer* cur;
    Timer* up;
    Stage st;
    uint64_t t0;
    explicit Timer(Stage s) : up(cur), st(s) {
        if (!opt.timers)
            return;
        uint64_t n = ticks();
        if (up)
            cnt.t[up->st] += n - up->t0;
        t0 = n;
        cur = this;
    }
    ~Timer() {
        if (!opt.timers)
            return;
        uint64_t n = ticks();
        cnt.t[st] += n - t0;
        if (up)
            up->t0 = n;
        cur = up;
    }
};
Timer* Timer::cur = nullptr;

// --------------------------------------------------------------- errors ----
struct ErrMgr {
    jpeg_error_mgr m;
    jmp_buf jb;
};
void on_error(j_common_ptr c) {
    longjmp(reinterpret_cast<ErrMgr*>(c->err)->jb, 1);
}
void on_message(j_common_ptr) {
}
jpeg_error_mgr* init_err(ErrMgr& e) {
    jpeg_std_error(&e.m);
    e.m.error_exit = on_error;
    e.m.output_message = on_message;
    return &e.m;
}

// ------------------------------------------------- growing reused buffers --
struct OutBuf {
    jpeg_destination_mgr d;  // must be first
    uint8_t* p = nullptr;
    size_t cap = 0, len = 0;
    void reserve(size_t n) {
        if (n > cap) {
            p = static_cast<uint8_t*>(realloc(p, n));
            cap = n;
            if (!p)
                abort();
        }
    }
    static void init(j_compress_ptr c) {
        OutBuf* o = reinterpret_cast<OutBuf*>(c->dest);
        o->d.next_output_byte = o->p;
        o->d.free_in_buffer = o->cap;
    }
    static boolean empty(j_compress_ptr c) {
        OutBuf* o = reinterpret_cast<OutBuf*>(c->dest);
        size_t old = o->cap;
        o->reserve(old * 2);
        o->d.next_output_byte = o->p + old;
        o->d.free_in_buffer = old;
        return TRUE;
    }
    static void term(j_compress_ptr c) {
        OutBuf* o = reinterpret_cast<OutBuf*>(c->dest);
        o->len = o->cap - o->d.free_in_buffer;
    }
    void attach(j_compress_ptr c, size_t want) {
        reserve(std::max<size_t>(want, 1 << 16));
        d.init_destination = init;
        d.empty_output_buffer = empty;
        d.term_destination = term;
        c->dest = &d;
        len = 0;
    }
};

// ------------------------------------------------------------------ files --
struct Mapped {
    const uint8_t* p = nullptr;
    size_t n = 0;
    int fd = -1;
    bool open(const std::string& path, bool all = true) {
        fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            return false;
        struct stat st;
        if (fstat(fd, &st) || st.st_size == 0)
            return false;
        n = st.st_size;
        void* v = mmap(nullptr, n, PROT_READ, MAP_PRIVATE | (all ? MAP_POPULATE : 0), fd, 0);
        if (v == MAP_FAILED) {
            n = 0;
            return false;
        }
        p = static_cast<const uint8_t*>(v);
        return true;
    }
    ~Mapped() {
        if (p)
            munmap(const_cast<uint8_t*>(p), n);
        if (fd >= 0)
            close(fd);
    }
};

bool write_file(const std::string& path, const uint8_t* p, size_t n) {
    cnt.bytes_out += n;
    if (!opt.write)
        return true;
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) {
        perror(path.c_str());
        return false;
    }
    // reserving the blocks first lets the kernel use large pages in its cache and
    // spares it the delayed allocation: about twice as fast on ext4
    if (n > 65536)
        (void)!fallocate(fd, 0, 0, n);
    while (n) {
        ssize_t k = ::write(fd, p, n);
        if (k < 0) {
            if (errno == EINTR)
                continue;
            perror(path.c_str());
            close(fd);
            return false;
        }
        p += k;
        n -= k;
    }
    return close(fd) == 0;
}

// -------------------------------------------- segments, EXIF, frame header --
struct Seg {
    int code;
    const uint8_t* p;
    unsigned n;
};
struct Head {
    std::vector<Seg> segs;
    unsigned w = 0, h = 0, orientation = 0, ncomp = 0, sof = 0;
    bool have_orientation = false;
    const uint8_t* thumb = nullptr;
    size_t thumb_n = 0;
};

struct Tiff {
    const uint8_t* p;
    size_t n;
    bool be;
    unsigned u16(size_t o) const { return o + 2 > n ? 0 : be ? p[o] << 8 | p[o + 1] : p[o + 1] << 8 | p[o]; }
    uint32_t u32(size_t o) const {
        if (o + 4 > n)
            return 0;
        return be ? uint32_t(p[o]) << 24 | p[o + 1] << 16 | p[o + 2] << 8 | p[o + 3]
                  : uint32_t(p[o + 3]) << 24 | p[o + 2] << 16 | p[o + 1] << 8 | p[o];
    }
};

void read_exif(const uint8_t* p, size_t n, Head& h) {
    if (n < 14 || memcmp(p, "Exif\0\0", 6))
        return;
    Tiff t{p + 6, n - 6, p[6] == 'M'};
    if (t.u16(2) != 42)
        return;
    uint32_t ifd = t.u32(4);
    if (ifd + 2 > t.n)
        return;
    unsigned k = t.u16(ifd);
    for (unsigned i = 0; i < k; i++)
        if (t.u16(ifd + 2 + 12 * i) == 0x0112 && t.u16(ifd + 4 + 12 * i) == 3) {
            h.orientation = t.u16(ifd + 10 + 12 * i);
            h.have_orientation = true;
        }
    uint32_t ifd1 = t.u32(ifd + 2 + 12 * size_t(k));
    if (!ifd1 || ifd1 + 2 > t.n)
        return;
    uint32_t off = 0, len = 0;
    k = t.u16(ifd1);
    for (unsigned i = 0; i < k; i++) {
        size_t o = ifd1 + 2 + 12 * i;
        unsigned tag = t.u16(o);
        if (tag == 0x0201)
            off = t.u32(o + 8);
        if (tag == 0x0202)
            len = t.u32(o + 8);
    }
    if (off && len && size_t(off) + len <= t.n) {
        h.thumb = t.p + off;
        h.thumb_n = len;
    }
}

bool read_head(const uint8_t* p, size_t n, Head& h) {
    if (n < 4 || p[0] != 0xFF || p[1] != 0xD8)
        return false;
    size_t o = 2;
    while (o + 4 <= n) {
        if (p[o] != 0xFF)
            return false;
        int m = p[o + 1];
        if (m == 0xFF) {
            o++;
            continue;
        }
        if (m == 0x01 || (m >= 0xD0 && m <= 0xD8)) {
            o += 2;
            continue;
        }
        if (m == 0xD9)
            return false;
        unsigned len = p[o + 2] << 8 | p[o + 3];
        if (len < 2 || o + 2 + len > n)
            return false;
        if ((m >= 0xE0 && m <= 0xEF) || m == 0xFE) {
            if (len > 2)
                h.segs.push_back({m, p + o + 4, len - 2});
        } else if (m >= 0xC0 && m <= 0xCF && m != 0xC4 && m != 0xC8 && m != 0xCC) {
            if (len < 8)
                return false;
            h.sof = m;
            h.h = p[o + 5] << 8 | p[o + 6];
            h.w = p[o + 7] << 8 | p[o + 8];
            h.ncomp = p[o + 9];
        } else if (m == 0xDA)
            break;
        o += 2 + len;
    }
    if (!h.w || !h.h)
        return false;
    for (const Seg& s : h.segs)
        if (s.code == 0xE1) {
            read_exif(s.p, s.n, h);
            break;
        }
    return true;
}

unsigned levels(unsigned w, unsigned h) {
    unsigned l = 0;
    while (w > opt.boxw || h > opt.boxh) {
        w /= 2;
        h /= 2;
        l++;
    }
    return l;
}
int mix_turn(int count, const Head& h) {
    if (!h.have_orientation)
        return count;
    switch (h.orientation) {
        case 6:
            return (count + 1) & 3;
        case 3:
            return (count + 2) & 3;
        case 8:
            return (count - 1) & 3;
        default:
            return count;
    }
}

// --------------------------------------------------------------- halving ---
void halve_scalar(uint8_t* d, const uint8_t* a, const uint8_t* b, unsigned dw, int nc) {
    if (nc == 3)
        for (unsigned x = 0; x < dw; x++, d += 3, a += 6, b += 6)
            for (int c = 0; c < 3; c++)
                d[c] = uint8_t((a[c] + a[c + 3] + b[c] + b[c + 3]) >> 2);
    else
        for (unsigned x = 0; x < dw; x++)
            d[x] = uint8_t((a[2 * x] + a[2 * x + 1] + b[2 * x] + b[2 * x + 1]) >> 2);
}
#ifdef __x86_64__
// Reads up to 4 bytes and writes up to 4 bytes past the rows: buffers are padded.
BEGIN_AVX2
inline __m256i ld2(const uint8_t* p, const uint8_t* q) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(q)), 1);
}
inline __m256i half32(const uint8_t* a, const uint8_t* b) {
    const __m256i one = _mm256_set1_epi8(1);
    __m256i u = _mm256_maddubs_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(a)), one);
    __m256i v = _mm256_maddubs_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(b)), one);
    return _mm256_srli_epi16(_mm256_add_epi16(u, v), 2);
}
void halve_avx2(uint8_t* d, const uint8_t* a, const uint8_t* b, unsigned dw, int nc) {
    const __m256i one = _mm256_set1_epi8(1);
    unsigned x = 0;
    if (nc == 3) {
        const __m256i pair = _mm256_setr_epi8(0, 3, 1, 4, 2, 5, 6, 9, 7, 10, 8, 11, -1, -1, -1, -1, 0, 3, 1, 4, 2, 5, 6,
                                              9, 7, 10, 8, 11, -1, -1, -1, -1);
        const __m256i comp = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1, 0, 1, 2, 3, 4, 5,
                                              8, 9, 10, 11, 12, 13, -1, -1, -1, -1);
        for (; x + 8 <= dw; x += 8, d += 24, a += 48, b += 48) {
            __m256i s0 = _mm256_add_epi16(_mm256_maddubs_epi16(_mm256_shuffle_epi8(ld2(a, a + 24), pair), one),
                                          _mm256_maddubs_epi16(_mm256_shuffle_epi8(ld2(b, b + 24), pair), one));
            __m256i s1 = _mm256_add_epi16(_mm256_maddubs_epi16(_mm256_shuffle_epi8(ld2(a + 12, a + 36), pair), one),
                                          _mm256_maddubs_epi16(_mm256_shuffle_epi8(ld2(b + 12, b + 36), pair), one));
            __m256i r =
                _mm256_shuffle_epi8(_mm256_packus_epi16(_mm256_srli_epi16(s0, 2), _mm256_srli_epi16(s1, 2)), comp);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(r));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 12), _mm256_extracti128_si256(r, 1));
        }
    } else {
        for (; x + 32 <= dw; x += 32, d += 32, a += 64, b += 64) {
            _mm256_storeu_si256(
                reinterpret_cast<__m256i*>(d),
                _mm256_permute4x64_epi64(_mm256_packus_epi16(half32(a, b), half32(a + 32, b + 32)), 0xD8));
        }
    }
    halve_scalar(d, a, b, dw - x, nc);
}
END_AVX2
#endif
void (*halve)(uint8_t*, const uint8_t*, const uint8_t*, unsigned, int) = halve_scalar;

// ---------------------------------------------------------- lossless turn --
// Turns by count quarter turns clockwise on DCT blocks; blocks of a partial
// iMCU at an edge that would have to cross the picture stay where they are and
// are turned as far as they can be; no segments are carried over.
#ifdef __x86_64__
inline void transpose8(__m128i r[8]) {
    __m128i a[8], b[8];
    for (int i = 0; i < 4; i++) {
        a[2 * i] = _mm_unpacklo_epi16(r[2 * i], r[2 * i + 1]);
        a[2 * i + 1] = _mm_unpackhi_epi16(r[2 * i], r[2 * i + 1]);
    }
    b[0] = _mm_unpacklo_epi32(a[0], a[2]);
    b[1] = _mm_unpackhi_epi32(a[0], a[2]);
    b[2] = _mm_unpacklo_epi32(a[1], a[3]);
    b[3] = _mm_unpackhi_epi32(a[1], a[3]);
    b[4] = _mm_unpacklo_epi32(a[4], a[6]);
    b[5] = _mm_unpackhi_epi32(a[4], a[6]);
    b[6] = _mm_unpacklo_epi32(a[5], a[7]);
    b[7] = _mm_unpackhi_epi32(a[5], a[7]);
    for (int i = 0; i < 4; i++) {
        r[2 * i] = _mm_unpacklo_epi64(b[i], b[i + 4]);
        r[2 * i + 1] = _mm_unpackhi_epi64(b[i], b[i + 4]);
    }
}
template <bool T, bool NEGCOL, bool NEGROW>
inline void turn_block(JCOEF* d, const JCOEF* s) {
    __m128i r[8];
    for (int i = 0; i < 8; i++)
        r[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 8 * i));
    if (T)
        transpose8(r);
    const __m128i m = _mm_setr_epi16(0, -1, 0, -1, 0, -1, 0, -1), z = _mm_setzero_si128();
    for (int i = 0; i < 8; i++) {
        if (NEGCOL)
            r[i] = _mm_sub_epi16(_mm_xor_si128(r[i], m), m);
        if (NEGROW && (i & 1))
            r[i] = _mm_sub_epi16(z, r[i]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8 * i), r[i]);
    }
}
#else
template <bool T, bool NEGCOL, bool NEGROW>
inline void turn_block(JCOEF* d, const JCOEF* s) {
    for (int y = 0; y < 8; y++)
        for (int x = 0; x < 8; x++) {
            int v = T ? s[8 * x + y] : s[8 * y + x];
            if ((NEGCOL && (x & 1)) != (NEGROW && (y & 1)))
                v = -v;
            d[8 * y + x] = JCOEF(v);
        }
}
#endif

bool turn_jpeg(int count, const uint8_t* in, size_t n, OutBuf& out) {
    jpeg_decompress_struct s;
    jpeg_compress_struct d;
    ErrMgr es, ed;
    s.err = init_err(es);
    d.err = init_err(ed);
    volatile bool made = false;
    if (setjmp(es.jb) || setjmp(ed.jb)) {
        if (made) {
            jpeg_destroy_compress(&d);
            jpeg_destroy_decompress(&s);
        }
        return false;
    }
    jpeg_create_decompress(&s);
    jpeg_create_compress(&d);
    made = true;
    jpeg_mem_src(&s, in, n);
    jpeg_read_header(&s, TRUE);
    const bool swap = count & 1;
    jvirt_barray_ptr dst[MAX_COMPONENTS], *srcv, *dstv;
    unsigned maxh = 1, maxv = 1;
    for (int c = 0; c < s.num_components; c++) {
        maxh = std::max<unsigned>(maxh, s.comp_info[c].h_samp_factor);
        maxv = std::max<unsigned>(maxv, s.comp_info[c].v_samp_factor);
    }
    if (s.num_components == 1)
        maxh = maxv = 1;
    struct Geo {
        unsigned h, v, bw, bh;
    } g[MAX_COMPONENTS];
    const unsigned ow = swap ? s.image_height : s.image_width, oh = swap ? s.image_width : s.image_height;
    const unsigned oh_s = swap ? maxv : maxh, ov_s = swap ? maxh : maxv;  // the output's maximum factors
    const unsigned mcux = (ow + 8 * oh_s - 1) / (8 * oh_s), mcuy = (oh + 8 * ov_s - 1) / (8 * ov_s);
    for (int c = 0; c < s.num_components; c++) {
        jpeg_component_info& k = s.comp_info[c];
        unsigned kh = s.num_components == 1 ? 1 : k.h_samp_factor, kv = s.num_components == 1 ? 1 : k.v_samp_factor;
        g[c].h = swap ? kv : kh;
        g[c].v = swap ? kh : kv;
        g[c].bw = mcux * g[c].h;
        g[c].bh = mcuy * g[c].v;
        if (count)
            dst[c] = s.mem->request_virt_barray(reinterpret_cast<j_common_ptr>(&s), JPOOL_IMAGE, FALSE, g[c].bw,
                                                g[c].bh, g[c].v);
    }
    srcv = jpeg_read_coefficients(&s);
    dstv = count ? dst : srcv;
    jpeg_copy_critical_parameters(&s, &d);
    if (swap) {
        d.image_width = s.image_height;
        d.image_height = s.image_width;
#if JPEG_LIB_VERSION >= 70
        d.jpeg_width = d.image_width;
        d.jpeg_height = d.image_height;
#endif
        for (int t = 0; t < NUM_QUANT_TBLS; t++)
            if (JQUANT_TBL* q = d.quant_tbl_ptrs[t])
                for (int i = 0; i < 8; i++)
                    for (int j = 0; j < i; j++)
                        std::swap(q->quantval[8 * i + j], q->quantval[8 * j + i]);
    }
    for (int c = 0; count && c < s.num_components; c++) {
        d.comp_info[c].h_samp_factor = g[c].h;
        d.comp_info[c].v_samp_factor = g[c].v;
    }
    out.attach(&d, n + n / 8);
    jpeg_write_coefficients(&d, dstv);
    if (count) {
        const unsigned fullx = ow / (8 * oh_s), fully = oh / (8 * ov_s);  // whole iMCUs
        std::vector<JBLOCKROW> sr, dr;
        for (int c = 0; c < s.num_components; c++) {
            jpeg_component_info& k = s.comp_info[c];
            unsigned sv = s.num_components == 1 ? 1 : k.v_samp_factor, srows = swap ? g[c].bw : g[c].bh;
            // every row of an in-memory virtual array has a fixed address
            sr.resize(srows);
            dr.resize(g[c].bh);
            for (unsigned y = 0; y < srows; y++) {
                (void)sv;
                sr[y] = *s.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&s), srcv[c], y, 1, FALSE);
            }
            for (unsigned y = 0; y < g[c].bh; y++)
                dr[y] = *s.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&s), dst[c], y, 1, TRUE);
            const unsigned fw = fullx * g[c].h, fh = fully * g[c].v;
            if (count == 2) {
                for (unsigned y = 0; y < g[c].bh; y++) {
                    const JBLOCKROW r = y < fh ? sr[fh - 1 - y] : sr[y];
                    JBLOCKROW o = dr[y];
                    if (y < fh) {
                        for (unsigned x = 0; x < fw; x++)
                            turn_block<false, true, true>(o[x], r[fw - 1 - x]);
                        for (unsigned x = fw; x < g[c].bw; x++)
                            turn_block<false, false, true>(o[x], r[x]);
                    } else {
                        for (unsigned x = 0; x < fw; x++)
                            turn_block<false, true, false>(o[x], r[fw - 1 - x]);
                        for (unsigned x = fw; x < g[c].bw; x++)
                            memcpy(o[x], r[x], sizeof(JBLOCK));
                    }
                }
                continue;
            }
            // quarter turns in tiles, so that both sides stay in the cache
            const unsigned T = 8;
            for (unsigned y0 = 0; y0 < g[c].bh; y0 += T)
                for (unsigned x0 = 0; x0 < g[c].bw; x0 += T) {
                    unsigned y1 = std::min(y0 + T, g[c].bh), x1 = std::min(x0 + T, g[c].bw);
                    for (unsigned x = x0; x < x1; x++) {
                        if (count == 1) {
                            const JBLOCKROW r = x < fw ? sr[fw - 1 - x] : sr[x];
                            if (x < fw)
                                for (unsigned y = y0; y < y1; y++)
                                    turn_block<true, true, false>(dr[y][x], r[y]);
                            else
                                for (unsigned y = y0; y < y1; y++)
                                    turn_block<true, false, false>(dr[y][x], r[y]);
                        } else {
                            const JBLOCKROW r = sr[x];
                            for (unsigned y = y0; y < y1; y++) {
                                if (y < fh)
                                    turn_block<true, false, true>(dr[y][x], r[fh - 1 - y]);
                                else
                                    turn_block<true, false, false>(dr[y][x], r[y]);
                            }
                        }
                    }
                }
        }
    }
    jpeg_finish_compress(&d);
    jpeg_finish_decompress(&s);
    bool ok = es.m.num_warnings == 0 && ed.m.num_warnings == 0;
    jpeg_destroy_compress(&d);
    jpeg_destroy_decompress(&s);
    return ok;
}

// --------------------------------------------------------------- encoders --
void encoder_params(j_compress_ptr c, unsigned w, unsigned h, int nc) {
    c->image_width = w;
    c->image_height = h;
    c->input_components = nc;
    c->in_color_space = nc == 3 ? JCS_RGB : JCS_GRAYSCALE;
    jpeg_set_defaults(c);
    jpeg_set_quality(c, opt.quality, TRUE);
}
void put_segs(j_compress_ptr c, const std::vector<Seg>* segs) {
    if (segs)
        for (const Seg& s : *segs)
            jpeg_write_marker(c, s.code, s.p, s.n);
}
size_t guess(unsigned w, unsigned h) {
    return size_t(w) * h * 3 / 2 + 131072;
}

// One level of the cascade: a ring of 32 rows in two strips of 16, an encoder
// that takes a strip at a time, and the level below.
struct Level {
    static const unsigned RING = 32, STRIP = 16;
    jpeg_compress_struct c;
    ErrMgr e;
    OutBuf out;
    std::vector<uint8_t> mem;
    uint8_t* row[RING];
    JSAMPROW rows[RING];
    size_t stride_cap = 0;
    unsigned w = 0, h = 0, y = 0, done = 0;
    int nc = 3;
    bool encode = false;
    Level* next = nullptr;
    Level() {
        c.err = init_err(e);
        jpeg_create_compress(&c);
    }
    void begin(unsigned w_, unsigned h_, int nc_, bool enc, const std::vector<Seg>* segs) {
        w = w_;
        h = h_;
        nc = nc_;
        y = done = 0;
        encode = enc;
        next = nullptr;
        size_t stride = (size_t(w) * nc + 64 + 63) & ~size_t(63);
        if (stride > stride_cap) {
            mem.assign(stride * RING + 64, 0);
            stride_cap = stride;
        }
        uint8_t* b = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(mem.data()) + 63) & ~uintptr_t(63));
        for (unsigned i = 0; i < RING; i++)
            rows[i] = row[i] = b + i * stride;
        if (enc) {
            Timer t(ST_ENCODE);
            encoder_params(&c, w, h, nc);
            out.attach(&c, guess(w, h));
            jpeg_start_compress(&c, TRUE);
            put_segs(&c, segs);
        }
    }
    uint8_t* slot() { return row[y & (RING - 1)]; }
    // the row in slot() is complete
    void commit() {
        unsigned i = y++;
        if (next && i >= (h & 1) && ((i - (h & 1)) & 1)) {
            {
                Timer t(ST_HALVE);
                halve(next->slot(), row[(i - 1) & (RING - 1)], row[i & (RING - 1)], next->w, nc);
            }
            next->commit();
        }
        if (encode && ((y & (STRIP - 1)) == 0 || y == h)) {
            Timer t(ST_ENCODE);
            while (done < y)
                done += jpeg_write_scanlines(&c, rows + (done & (RING - 1)), y - done);
        }
    }
    void finish() {
        if (encode) {
            Timer t(ST_ENCODE);
            jpeg_finish_compress(&c);
        }
    }
    void abort_() {
        if (encode)
            jpeg_abort_compress(&c);
    }
};

struct Worker {
    jpeg_decompress_struct d;
    ErrMgr e;
    std::vector<std::unique_ptr<Level>> lv;
    std::vector<uint8_t> ring;
    size_t ring_stride = 0;
    OutBuf turned, thumb;
    Worker() {
        d.err = init_err(e);
        jpeg_create_decompress(&d);
    }
    bool photo(const std::string& name);
    bool levels_stream(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs);
    bool levels_raw(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs);
    bool levels_plain(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs,
                      const std::string& name);
};

std::string level_path(unsigned k, const std::string& name) {
    return opt.out + "/size" + std::to_string(k) + "/" + name;
}

bool Worker::levels_stream(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs) {
    unsigned top = gen_thumb ? L + 2 : L;
    while (lv.size() <= top)
        lv.emplace_back(new Level);
    volatile bool started = false;
    if (setjmp(e.jb)) {
        jpeg_abort_decompress(&d);
        if (started)
            for (unsigned k = 1; k <= top; k++)
                lv[k]->abort_();
        Timer::cur = nullptr;
        return false;
    }
    {
        Timer t(ST_DECODE);
        jpeg_mem_src(&d, p, n);
        jpeg_read_header(&d, TRUE);
    }
    int nc = d.out_color_space == JCS_RGB ? 3 : 1;
    if (!((d.num_components == 3 && d.out_color_space == JCS_RGB) ||
          (d.num_components == 1 && d.out_color_space == JCS_GRAYSCALE))) {
        jpeg_abort_decompress(&d);
        return false;
    }
    unsigned w = d.image_width, hh = d.image_height;
    for (unsigned k = 1, kw = w / 2, kh = hh / 2; k <= top; k++, kw /= 2, kh /= 2) {
        lv[k]->begin(kw, kh, nc, k <= L || k == L + 2, k <= L ? segs : nullptr);
        if (k > 1)
            lv[k - 1]->next = lv[k].get();
    }
    started = true;
    Level& one = *lv[1];
    size_t stride = (size_t(w) * nc + 64 + 63) & ~size_t(63);
    if (stride > ring_stride) {
        ring.assign(stride * 4 + 64, 0);
        ring_stride = stride;
    }
    uint8_t* b = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(ring.data()) + 63) & ~uintptr_t(63));
    JSAMPROW r[4];
    for (int i = 0; i < 4; i++)
        r[i] = b + i * stride;
    {
        Timer t(ST_DECODE);
        jpeg_start_decompress(&d);
        unsigned y = 0, odd = hh & 1;
        while (y < hh) {
            unsigned got = jpeg_read_scanlines(&d, r + (y & 3), 4 - (y & 3));
            if (!got)
                break;
            for (unsigned i = 0; i < got; i++, y++)
                if (y >= odd && ((y - odd) & 1)) {
                    {
                        Timer t2(ST_HALVE);
                        halve(one.slot(), r[(y - 1) & 3], r[y & 3], one.w, nc);
                    }
                    one.commit();
                }
        }
        jpeg_finish_decompress(&d);
    }
    for (unsigned k = 1; k <= top; k++)
        lv[k]->finish();
    return true;
}

#include "limit_raw.h"

// ------------------------------------------------- the plain pipeline ------
struct Image {
    unsigned w = 0, h = 0;
    int nc = 3;
    size_t row = 0;
    std::unique_ptr<uint8_t[]> p;
    void make(unsigned w_, unsigned h_, int nc_) {
        w = w_;
        h = h_;
        nc = nc_;
        row = (size_t(w) * nc + 3) & ~size_t(3);
        p.reset(new uint8_t[row * h + 1]);
    }
};

bool plain_decode(const uint8_t* p, size_t n, Image& im) {
    Timer t(ST_DECODE);
    jpeg_decompress_struct c;
    ErrMgr e;
    c.err = init_err(e);
    if (setjmp(e.jb)) {
        jpeg_destroy_decompress(&c);
        return false;
    }
    jpeg_create_decompress(&c);
    jpeg_mem_src(&c, p, n);
    jpeg_save_markers(&c, JPEG_COM, 65535);
    for (int i = 0; i < 16; i++)
        jpeg_save_markers(&c, JPEG_APP0 + i, 65535);
    jpeg_read_header(&c, TRUE);
    if (!((c.num_components == 3 && c.out_color_space == JCS_RGB) ||
          (c.num_components == 1 && c.out_color_space == JCS_GRAYSCALE))) {
        jpeg_destroy_decompress(&c);
        return false;
    }
    im.make(c.image_width, c.image_height, c.num_components);
    jpeg_start_decompress(&c);
    while (c.output_scanline < c.output_height) {
        JSAMPROW r = im.p.get() + im.row * (im.h - 1 - c.output_scanline);
        jpeg_read_scanlines(&c, &r, 1);
    }
    jpeg_finish_decompress(&c);
    jpeg_destroy_decompress(&c);
    return true;
}
void plain_halve(Image& d, const Image& s) {
    Timer t(ST_HALVE);
    d.make(s.w / 2, s.h / 2, s.nc);
    for (unsigned y = 0; y < d.h; y++) {
        const uint8_t *a = s.p.get() + s.row * (2 * y), *b = a + s.row;
        uint8_t* o = d.p.get() + d.row * y;
        for (unsigned x = 0; x < d.w; x++)
            for (int c = 0; c < s.nc; c++)
                o[x * s.nc + c] = uint8_t((a[2 * x * s.nc + c] + a[(2 * x + 1) * s.nc + c] + b[2 * x * s.nc + c] +
                                           b[(2 * x + 1) * s.nc + c]) >>
                                          2);
    }
}
struct PlainDest {
    jpeg_destination_mgr d;
    std::vector<uint8_t> v;
};
bool plain_encode(const Image& im, const std::vector<Seg>* segs, const std::string& path) {
    jpeg_compress_struct c;
    ErrMgr e;
    PlainDest o;
    {
        Timer t(ST_ENCODE);
        c.err = init_err(e);
        if (setjmp(e.jb)) {
            jpeg_destroy_compress(&c);
            return false;
        }
        jpeg_create_compress(&c);
        o.d.init_destination = [](j_compress_ptr k) {
            PlainDest* o = reinterpret_cast<PlainDest*>(k->dest);
            o->v.resize(1 << 20);
            o->d.next_output_byte = o->v.data();
            o->d.free_in_buffer = 1 << 20;
        };
        o.d.empty_output_buffer = [](j_compress_ptr k) -> boolean {
            PlainDest* o = reinterpret_cast<PlainDest*>(k->dest);
            size_t n = o->v.size();
            o->v.resize(n + (1 << 20));
            o->d.next_output_byte = o->v.data() + n;
            o->d.free_in_buffer = 1 << 20;
            return TRUE;
        };
        o.d.term_destination = [](j_compress_ptr k) {
            PlainDest* o = reinterpret_cast<PlainDest*>(k->dest);
            o->v.resize(o->v.size() - o->d.free_in_buffer);
        };
        c.dest = &o.d;
        encoder_params(&c, im.w, im.h, im.nc);
        jpeg_start_compress(&c, TRUE);
        put_segs(&c, segs);
        while (c.next_scanline < c.image_height) {
            JSAMPROW r = im.p.get() + im.row * (im.h - 1 - c.next_scanline);
            jpeg_write_scanlines(&c, &r, 1);
        }
        jpeg_finish_compress(&c);
        jpeg_destroy_compress(&c);
    }
    Timer t(ST_WRITE);
    return write_file(path, o.v.data(), o.v.size());
}
bool Worker::levels_plain(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs,
                          const std::string& name) {
    Image a, b;
    if (!plain_decode(p, n, a))
        return false;
    plain_halve(b, a);
    std::swap(a, b);
    b.p.reset();
    for (unsigned k = 1; k <= L; k++) {
        if (!plain_encode(a, segs, level_path(k, name)))
            return false;
        plain_halve(b, a);
        std::swap(a, b);
        b.p.reset();
    }
    if (gen_thumb) {
        plain_halve(b, a);
        return plain_encode(b, nullptr, opt.out + "/thumb/" + name);
    }
    return true;
}

// ------------------------------------------------------------- one photo ---
bool Worker::photo(const std::string& name) {
    Mapped in;
    Head h;
    {
        Timer t(ST_MAP);
        if (!in.open(opt.in + "/" + name, !opt.exif_only) || !read_head(in.p, in.n, h))
            return false;
    }
    cnt.bytes_in += in.n;
    cnt.pixels += uint64_t(h.w) * h.h;
    if (opt.exif_only)
        return true;
    int m = mix_turn(opt.turn, h);
    const uint8_t* p = in.p;
    size_t n = in.n;
    if (opt.rotate_only) {
        {
            Timer t(ST_TURN);
            if (!turn_jpeg(opt.turn, in.p, in.n, turned))
                return false;
        }
        Timer t(ST_WRITE);
        return write_file(level_path(0, name), turned.p, turned.len);
    }
    unsigned L = levels(h.w, h.h);
    const bool gen = !h.thumb_n;
    if (!(std::min(h.w, h.h) >> (gen ? L + 2 : L)))
        return false;  // a level without pixels cannot be encoded
    if (opt.turn) {
        {
            Timer t(ST_TURN);
            if (!turn_jpeg(m, in.p, in.n, turned))
                return false;
        }
        Timer t(ST_WRITE);
        if (!write_file(level_path(0, name), turned.p, turned.len))
            return false;
        p = turned.p;
        n = turned.len;
    } else {
        Timer t(ST_COPY);
        if (!write_file(level_path(0, name), in.p, in.n))
            return false;
    }
    const std::vector<Seg>* segs = opt.turn ? nullptr : &h.segs;
    if (opt.plain) {
        if (!levels_plain(p, n, L, gen, segs, name))
            return false;
    } else if (L || gen) {
        bool ok = opt.stream ? levels_stream(p, n, L, gen, segs) : levels_raw(p, n, L, gen, segs);
        if (!ok)
            return false;
        Timer t(ST_WRITE);
        for (unsigned k = 1; k <= L; k++)
            if (!write_file(level_path(k, name), lv[k]->out.p, lv[k]->out.len))
                return false;
        if (gen && !write_file(opt.out + "/thumb/" + name, lv[L + 2]->out.p, lv[L + 2]->out.len))
            return false;
    }
    if (!gen) {
        Timer t(ST_THUMB);
        const uint8_t* q = h.thumb;
        size_t k = h.thumb_n;
        if (m && turn_jpeg(m, q, k, thumb)) {
            q = thumb.p;
            k = thumb.len;
        }
        if (!write_file(opt.out + "/thumb/" + name, q, k))
            return false;
    }
    return true;
}

double now() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec + t.tv_nsec * 1e-9;
}
double cpu(int who) {
    rusage u;
    getrusage(who, &u);
    return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) * 1e-6;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> pos;
    for (int i = 1; i < argc; i++) {
        std::string a = argv[i];
        auto val = [&]() -> const char* {
            if (i + 1 >= argc) {
                fprintf(stderr, "%s: value missing\n", a.c_str());
                exit(2);
            }
            return argv[++i];
        };
        if (a == "-j")
            opt.jobs = std::max(1, atoi(val()));
        else if (a == "-q")
            opt.quality = atoi(val());
        else if (a == "-r")
            opt.turn = atoi(val()) & 3;
        else if (a == "--box") {
            if (sscanf(val(), "%ux%u", &opt.boxw, &opt.boxh) != 2 || !opt.boxw || !opt.boxh) {
                fprintf(stderr, "bad box\n");
                return 2;
            }
        } else if (a == "--plain")
            opt.plain = true;
        else if (a == "--stream")
            opt.stream = true;
        else if (a == "--rotate-only")
            opt.rotate_only = true;
        else if (a == "--exif-only")
            opt.exif_only = true;
        else if (a == "--no-write")
            opt.write = false;
        else if (a == "--timers")
            opt.timers = true;
        else if (a == "--repeat")
            opt.repeat = std::max(1, atoi(val()));
        else if (a[0] == '-') {
            fprintf(stderr, "unknown option %s (see the head of limit.cpp)\n", a.c_str());
            return 2;
        } else
            pos.push_back(a);
    }
    if (pos.size() != 2) {
        fprintf(stderr, "usage: limit [options] PHOTODIR OUTDIR\n");
        return 2;
    }
    opt.in = pos[0];
    opt.out = pos[1];
    // keep what the JPEG library frees: no page is faulted in twice
    if (!opt.plain) {
        mallopt(M_MMAP_THRESHOLD, 1 << 30);
        mallopt(M_TRIM_THRESHOLD, 2000 << 20);
        mallopt(M_TOP_PAD, 16 << 20);
    }
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2"))
        halve = halve_avx2;
#endif
    std::vector<std::string> names;
    DIR* dp = opendir(opt.in.c_str());
    if (!dp) {
        perror(opt.in.c_str());
        return 1;
    }
    while (dirent* de = readdir(dp)) {
        std::string s = de->d_name;
        if (s.size() > 4 && !strcasecmp(s.c_str() + s.size() - 4, ".jpg"))
            names.push_back(s);
    }
    closedir(dp);
    std::sort(names.begin(), names.end());
    double t0 = now();
    if (opt.write && !opt.exif_only) {
        mkdir(opt.out.c_str(), 0777);
        mkdir((opt.out + "/thumb").c_str(), 0777);
        mkdir((opt.out + "/size0").c_str(), 0777);
        unsigned most = 0;
        for (const std::string& s : names) {
            Mapped m;
            Head h;
            int fd = ::open((opt.in + "/" + s).c_str(), O_RDONLY | O_CLOEXEC);
            if (fd < 0)
                continue;
            uint8_t buf[131072];
            ssize_t k = pread(fd, buf, sizeof buf, 0);
            close(fd);
            if (k > 0 && read_head(buf, k, h))
                most = std::max(most, levels(h.w, h.h));
            else if (m.open(opt.in + "/" + s)) {
                Head h2;
                if (read_head(m.p, m.n, h2))
                    most = std::max(most, levels(h2.w, h2.h));
            }
        }
        for (unsigned k = 1; k <= most && !opt.rotate_only; k++)
            mkdir((opt.out + "/size" + std::to_string(k)).c_str(), 0777);
    }
    struct Shared {
        volatile unsigned next;
        Counters c[256];
    };
    Shared* sh =
        static_cast<Shared*>(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    if (sh == MAP_FAILED) {
        perror("mmap");
        return 1;
    }
    int jobs = std::min(opt.jobs, 256);
    auto work = [&](int me) {
        Worker w;
        uint64_t b = ticks();
        for (;;) {
            unsigned i = __sync_fetch_and_add(&sh->next, 1u);
            if (i >= names.size() * opt.repeat)
                break;
            const std::string& s = names[i % names.size()];
            if (w.photo(s))
                cnt.photos++;
            else {
                cnt.failed++;
                Timer::cur = nullptr;
                fprintf(stderr, "%s: failed\n", s.c_str());
            }
        }
        cnt.total = ticks() - b;
        sh->c[me] = cnt;
    };
    if (jobs == 1)
        work(0);
    else {
        for (int j = 0; j < jobs; j++)
            if (fork() == 0) {
                work(j);
                _exit(0);
            }
        while (wait(nullptr) > 0) {
        }
    }
    double wall = now() - t0, c = cpu(RUSAGE_SELF) + cpu(RUSAGE_CHILDREN);
    Counters s{};
    for (int j = 0; j < jobs; j++) {
        const Counters& k = sh->c[j];
        for (int i = 0; i < ST_N; i++)
            s.t[i] += k.t[i];
        s.total += k.total;
        s.photos += k.photos;
        s.failed += k.failed;
        s.bytes_in += k.bytes_in;
        s.bytes_out += k.bytes_out;
        s.pixels += k.pixels;
    }
    printf(
        "%s -j%d: %lu photos (%lu failed), wall %.3f s, cpu %.3f s, %.4f s/photo, %.1f Mpx/s, in %.1f MB, out %.1f "
        "MB\n",
        opt.plain    ? "plain"
        : opt.stream ? "stream"
                     : "limit",
        jobs, (unsigned long)s.photos, (unsigned long)s.failed, wall, c, s.photos ? wall / s.photos : 0.0,
        s.pixels / wall * 1e-6, s.bytes_in * 1e-6, s.bytes_out * 1e-6);
    if (opt.timers) {
        uint64_t sum = 0;
        for (int i = 0; i < ST_N; i++) {
            sum += s.t[i];
            if (s.t[i])
                printf("  %-14s %5.1f %%  %.4f s/photo\n", stage_name[i], 100.0 * s.t[i] / s.total,
                       double(s.t[i]) / s.total * wall * jobs / s.photos);
        }
        printf("  %-14s %5.1f %%\n", "other", 100.0 * (s.total - sum) / s.total);
    }
    return s.failed ? 1 : 0;
}
