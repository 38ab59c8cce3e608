// The planar pipeline of limit.cpp (its default), included there.
//
// The decoder hands over YCbCr planes before upsampling.  Each output pixel of
// level 1 is made in one pass over its 2x2 source pixels: triangle ("fancy")
// upsampling, YCbCr to RGB, sum >> 2; even and odd columns live in separate
// registers, so nothing is ever interleaved.  The levels are kept as planar
// rows; each row pair is converted to YCbCr with 2x2 chroma means straight
// into the encoder's strip.  All integer formulas are those that libjpeg
// documents for its default settings, so the files are the same bytes.

#ifdef __x86_64__
BEGIN_AVX2

#define LD256(p) _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))
#define ST256(p, v) _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v)
#define LD128(p) _mm_loadu_si128(reinterpret_cast<const __m128i*>(p))
#define ST128(p, v) _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v)

// vertical part of the upsampling: o[x] = 3 a[x] + b[x]; o[-1] and o[n] repeat the ends
inline void column_sums(int16_t* o, const uint8_t* a, const uint8_t* b, unsigned n) {
    const __m256i three = _mm256_set1_epi16(3);
    for (unsigned x = 0; x < n; x += 16)
        ST256(o + x, _mm256_add_epi16(_mm256_mullo_epi16(_mm256_cvtepu8_epi16(LD128(a + x)), three),
                                      _mm256_cvtepu8_epi16(LD128(b + x))));
    o[-1] = o[0];
    o[n] = o[n - 1];
}
inline void column_copy(int16_t* o, const uint8_t* a, unsigned n) {
    for (unsigned x = 0; x < n; x += 16)
        ST256(o + x, _mm256_cvtepu8_epi16(LD128(a + x)));
    o[-1] = o[0];
    o[n] = o[n - 1];
}

struct Rgb {
    __m256i r, g, b;
};
inline __m256i clamp8(__m256i v) {
    return _mm256_min_epi16(_mm256_max_epi16(v, _mm256_setzero_si256()), _mm256_set1_epi16(255));
}
// y, cb, cr: 16-bit lanes 0..255; adds the clamped pixel to s
inline void add_rgb(Rgb& s, __m256i y, __m256i cb, __m256i cr) {
    const __m256i c128 = _mm256_set1_epi16(128), one = _mm256_set1_epi16(1);
    cb = _mm256_sub_epi16(cb, c128);
    cr = _mm256_sub_epi16(cr, c128);
    // (91881 cr + 32768) >> 16 = cr + (((26345 * 2 cr) >> 16) + 1 >> 1)
    __m256i r = _mm256_add_epi16(
        cr, _mm256_srai_epi16(
                _mm256_add_epi16(_mm256_mulhi_epi16(_mm256_add_epi16(cr, cr), _mm256_set1_epi16(26345)), one), 1));
    // (116130 cb + 32768) >> 16 = 2 cb + ((-14942 cb + 32768) >> 16)
    __m256i b = _mm256_add_epi16(_mm256_add_epi16(cb, cb), _mm256_mulhrs_epi16(cb, _mm256_set1_epi16(-7471)));
    // (-22554 cb - 46802 cr + 32768) >> 16 = ((-22554 cb + 18734 cr + 32768) >> 16) - cr
    const __m256i k = _mm256_set1_epi32((18734 << 16) | (-22554 & 0xFFFF)), h = _mm256_set1_epi32(32768);
    __m256i lo = _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(_mm256_unpacklo_epi16(cb, cr), k), h), 16);
    __m256i hi = _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(_mm256_unpackhi_epi16(cb, cr), k), h), 16);
    __m256i g = _mm256_sub_epi16(_mm256_packs_epi32(lo, hi), cr);
    s.r = _mm256_add_epi16(s.r, clamp8(_mm256_add_epi16(y, r)));
    s.g = _mm256_add_epi16(s.g, clamp8(_mm256_add_epi16(y, g)));
    s.b = _mm256_add_epi16(s.b, clamp8(_mm256_add_epi16(y, b)));
}
inline __m128i bytes(__m256i v) {
    return _mm256_castsi256_si128(_mm256_permute4x64_epi64(_mm256_packus_epi16(v, v), 0xD8));
}

// One row of level 1 from two source rows.  V2: the column sums carry weight 4
// (4:2:0), else 1 (4:2:2).
template <bool V2>
void first_halving(uint8_t* dr, uint8_t* dg, uint8_t* db, unsigned dw, const uint8_t* y0, const int16_t* cb0,
                   const int16_t* cr0, const uint8_t* y1, const int16_t* cb1, const int16_t* cr1) {
    const __m256i three = _mm256_set1_epi16(3), re = _mm256_set1_epi16(V2 ? 8 : 1), ro = _mm256_set1_epi16(V2 ? 7 : 2),
                  low = _mm256_set1_epi16(255);
    const int S = V2 ? 4 : 2;
    for (unsigned x = 0; x < dw; x += 16) {
        Rgb s{_mm256_setzero_si256(), _mm256_setzero_si256(), _mm256_setzero_si256()};
        auto row = [&](const uint8_t* y, const int16_t* cb, const int16_t* cr) __attribute__((always_inline)) {
            __m256i b3 = _mm256_mullo_epi16(LD256(cb + x), three), r3 = _mm256_mullo_epi16(LD256(cr + x), three),
                    l = LD256(y + 2 * x);
            add_rgb(s, _mm256_and_si256(l, low),
                    _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(b3, LD256(cb + x - 1)), re), S),
                    _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(r3, LD256(cr + x - 1)), re), S));
            add_rgb(s, _mm256_srli_epi16(l, 8),
                    _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(b3, LD256(cb + x + 1)), ro), S),
                    _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(r3, LD256(cr + x + 1)), ro), S));
        };
        row(y0, cb0, cr0);
        row(y1, cb1, cr1);
        ST128(dr + x, bytes(_mm256_srli_epi16(s.r, 2)));
        ST128(dg + x, bytes(_mm256_srli_epi16(s.g, 2)));
        ST128(db + x, bytes(_mm256_srli_epi16(s.b, 2)));
    }
}

// Two rows to YCbCr 4:2:0: 16-bit lanes of one column parity.
struct Ycc {
    __m256i y, cb, cr;
};
inline Ycc to_ycc(__m256i r, __m256i g, __m256i b) {
    const __m256i z = _mm256_setzero_si256();
    const __m256i ky1 = _mm256_set1_epi32((22086 << 16) | 19595), ky2 = _mm256_set1_epi32((16384 << 16) | 7471);
    const __m256i kb = _mm256_set1_epi32(int(unsigned(-21709) << 16 | (-11059 & 0xFFFF))),
                  kr = _mm256_set1_epi32(int(unsigned(-27439) << 16 | (-5329 & 0xFFFF)));
    const __m256i h = _mm256_set1_epi32(32768), o = _mm256_set1_epi32((128 << 16) + 32767);
    __m256i rgl = _mm256_unpacklo_epi16(r, g), rgh = _mm256_unpackhi_epi16(r, g), bgl = _mm256_unpacklo_epi16(b, g),
            bgh = _mm256_unpackhi_epi16(b, g);
    auto half = [&](__m256i rg, __m256i bg, __m256i b16, __m256i r16, __m256i & y, __m256i & cb, __m256i & cr)
        __attribute__((always_inline)) {
        y = _mm256_srli_epi32(
            _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(rg, ky1), _mm256_madd_epi16(bg, ky2)), h), 16);
        cb = _mm256_srli_epi32(
            _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(rg, kb), _mm256_srli_epi32(b16, 1)), o), 16);
        cr = _mm256_srli_epi32(
            _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(bg, kr), _mm256_srli_epi32(r16, 1)), o), 16);
    };
    __m256i yl, yh, bl, bh, rl, rh;
    half(rgl, bgl, _mm256_unpacklo_epi16(z, b), _mm256_unpacklo_epi16(z, r), yl, bl, rl);
    half(rgh, bgh, _mm256_unpackhi_epi16(z, b), _mm256_unpackhi_epi16(z, r), yh, bh, rh);
    return {_mm256_packus_epi32(yl, yh), _mm256_packus_epi32(bl, bh), _mm256_packus_epi32(rl, rh)};
}
void rows_to_ycc(uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr, unsigned w, uint8_t* const a[3],
                 uint8_t* const b[3]) {
    const __m256i low = _mm256_set1_epi16(255), bias = _mm256_set1_epi32((2 << 16) | 1);
    for (unsigned x = 0; x < w; x += 32) {
        __m256i sb = bias, sr = bias;
        auto row = [&](uint8_t* const p[3], uint8_t* y) __attribute__((always_inline)) {
            __m256i r = LD256(p[0] + x), g = LD256(p[1] + x), bb = LD256(p[2] + x);
            Ycc e = to_ycc(_mm256_and_si256(r, low), _mm256_and_si256(g, low), _mm256_and_si256(bb, low));
            Ycc o = to_ycc(_mm256_srli_epi16(r, 8), _mm256_srli_epi16(g, 8), _mm256_srli_epi16(bb, 8));
            ST256(y + x, _mm256_or_si256(e.y, _mm256_slli_epi16(o.y, 8)));
            sb = _mm256_add_epi16(sb, _mm256_add_epi16(e.cb, o.cb));
            sr = _mm256_add_epi16(sr, _mm256_add_epi16(e.cr, o.cr));
        };
        row(a, y0);
        row(b, y1);
        ST128(cb + x / 2, bytes(_mm256_srli_epi16(sb, 2)));
        ST128(cr + x / 2, bytes(_mm256_srli_epi16(sr, 2)));
    }
}
void halve_plane(uint8_t* d, const uint8_t* a, const uint8_t* b, unsigned dw) {
    for (unsigned x = 0; x < dw; x += 32)
        ST256(d + x,
              _mm256_permute4x64_epi64(
                  _mm256_packus_epi16(half32(a + 2 * x, b + 2 * x), half32(a + 2 * x + 32, b + 2 * x + 32)), 0xD8));
}
#undef LD256
#undef ST256
#undef LD128
#undef ST128
END_AVX2

struct PlanarLevel {
    jpeg_compress_struct c;
    ErrMgr e;
    OutBuf* out = nullptr;
    std::vector<uint8_t> mem;
    size_t stride_cap = 0;
    uint8_t* px[2][3];              // the last two rows, planar RGB
    JSAMPROW ys[16], bs[8], rs[8];  // the encoder's strip
    unsigned w = 0, h = 0, y = 0;
    bool encode = false;
    PlanarLevel* next = nullptr;
    PlanarLevel() {
        c.err = init_err(e);
        jpeg_create_compress(&c);
    }
    void begin(unsigned w_, unsigned h_, bool enc, const std::vector<Seg>* segs, OutBuf& o) {
        w = w_;
        h = h_;
        y = 0;
        encode = enc;
        next = nullptr;
        out = &o;
        size_t stride = (size_t(w) + 128 + 63) & ~size_t(63);
        if (stride > stride_cap) {
            mem.assign(stride * (6 + 16 + 8) + 64, 0);
            stride_cap = stride;
        }
        uint8_t* b = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(mem.data()) + 63) & ~uintptr_t(63));
        for (int i = 0; i < 2; i++)
            for (int k = 0; k < 3; k++) {
                px[i][k] = b;
                b += stride;
            }
        for (int i = 0; i < 16; i++) {
            ys[i] = b;
            b += stride;
        }
        for (int i = 0; i < 8; i++) {
            bs[i] = b;
            rs[i] = b + stride / 2;
            b += stride;
        }
        if (!enc)
            return;
        Timer t(ST_ENCODE);
        encoder_params(&c, w, h, 3);
        c.raw_data_in = TRUE;
        out->attach(&c, guess(w, h));
        jpeg_start_compress(&c, TRUE);
        put_segs(&c, segs);
    }
    uint8_t** slot() { return px[y & 1]; }
    void commit() {
        unsigned i = y++;
        if (next && i >= (h & 1) && ((i - (h & 1)) & 1)) {
            {
                Timer t(ST_HALVE);
                for (int k = 0; k < 3; k++)
                    halve_plane(next->slot()[k], px[0][k], px[1][k], next->w);
            }
            next->commit();
        }
        if (!encode)
            return;
        if (w & 15)
            for (int k = 0; k < 3; k++)
                memset(px[i & 1][k] + w, px[i & 1][k][w - 1], 16 - (w & 15));
        if (!(i & 1) && y != h)
            return;
        Timer t(ST_ENCODE);
        unsigned s = (i & ~1u) & 15;
        rows_to_ycc(ys[s], ys[s + 1], bs[s / 2], rs[s / 2], (w + 15) & ~15u, px[0], px[i & 1]);
        if (s != 14 && y != h)
            return;
        size_t yw = (w + 7) & ~7u, cw = ((w + 15) & ~15u) / 2;
        unsigned filled = s + 1 + (i & 1);  // luma rows in the strip
        for (unsigned k = filled; k < 16; k++)
            memcpy(ys[k], ys[filled - 1], yw);
        for (unsigned k = s / 2 + 1; k < 8; k++) {
            memcpy(bs[k], bs[s / 2], cw);
            memcpy(rs[k], rs[s / 2], cw);
        }
        JSAMPARRAY planes[3] = {ys, bs, rs};
        jpeg_write_raw_data(&c, planes, 16);
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

bool Worker::levels_raw(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs) {
    static std::vector<std::unique_ptr<PlanarLevel>> pl;
    unsigned top = gen_thumb ? L + 2 : L;
    volatile bool started = false;
    if (setjmp(e.jb)) {
        jpeg_abort_decompress(&d);
        if (started)
            for (unsigned k = 1; k <= top; k++)
                pl[k]->abort_();
        Timer::cur = nullptr;
        return false;
    }
    {
        Timer t(ST_DECODE);
        jpeg_mem_src(&d, p, n);
        jpeg_read_header(&d, TRUE);
    }
    bool v2 = false;
    bool fits = d.num_components == 3 && d.jpeg_color_space == JCS_YCbCr && d.image_width >= 32 &&
                d.image_height >= 8 && d.comp_info[0].h_samp_factor == 2 && d.comp_info[1].h_samp_factor == 1 &&
                d.comp_info[2].h_samp_factor == 1 && d.comp_info[1].v_samp_factor == 1 &&
                d.comp_info[2].v_samp_factor == 1 && d.comp_info[0].v_samp_factor <= 2;
    if (fits)
        v2 = d.comp_info[0].v_samp_factor == 2;
    if (!fits || (d.image_width >> top) < 1 || (d.image_height >> top) < 1 || !__builtin_cpu_supports("avx2")) {
        jpeg_abort_decompress(&d);
        return levels_stream(p, n, L, gen_thumb, segs);
    }
    while (lv.size() <= top)
        lv.emplace_back(new Level);
    while (pl.size() <= top)
        pl.emplace_back(new PlanarLevel);
    const unsigned w = d.image_width, h = d.image_height, cw = (w + 1) / 2, ch = v2 ? (h + 1) / 2 : h;
    for (unsigned k = 1, kw = w / 2, kh = h / 2; k <= top; k++, kw /= 2, kh /= 2) {
        pl[k]->begin(kw, kh, k <= L || k == L + 2, k <= L ? segs : nullptr, lv[k]->out);
        if (k > 1)
            pl[k - 1]->next = pl[k].get();
    }
    started = true;
    PlanarLevel& one = *pl[1];
    // two iMCU rows of planes, and four rows of column sums (two source rows, Cb and Cr)
    const unsigned MR = v2 ? 16 : 8;
    size_t ystr = (size_t(w) + 128 + 63) & ~size_t(63), cstr = (size_t(cw) + 128 + 63) & ~size_t(63),
           sstr = (size_t(cw) + 128 + 31) & ~size_t(31);
    size_t need = ystr * 2 * MR + cstr * 32 + sstr * 2 * 4 + 256;
    if (ring.size() < need) {
        ring.assign(need, 0);
        ring_stride = 0;
    }
    uint8_t* b = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(ring.data()) + 63) & ~uintptr_t(63));
    JSAMPROW Y[32], B[16], R[16];
    for (unsigned i = 0; i < 2 * MR; i++) {
        Y[i] = b;
        b += ystr;
    }
    for (unsigned i = 0; i < 16; i++) {
        B[i] = b;
        b += cstr;
        R[i] = b;
        b += cstr;
    }
    int16_t* cs[2][2];
    for (int i = 0; i < 2; i++)
        for (int k = 0; k < 2; k++) {
            cs[i][k] = reinterpret_cast<int16_t*>(b) + 32;
            b += sstr * 2;
        }
    {
        Timer t(ST_DECODE);
        d.raw_data_out = TRUE;
        d.do_fancy_upsampling = FALSE;  // not used for raw output
        jpeg_start_decompress(&d);
        unsigned y = h & 1, read = 0;  // next source pair begins at y
        while (y + 1 < h) {
            unsigned f = (read / MR) & 1;
            JSAMPARRAY planes[3] = {Y + f * MR, B + f * 8, R + f * 8};
            jpeg_read_raw_data(&d, planes, MR);
            read += MR;
            const bool last = read >= h;
            unsigned have = last ? h : v2 ? read - 1 : read;  // 4:2:0 needs the chroma row below
            Timer t2(ST_HALVE);
            for (; y + 1 < have; y += 2) {
                for (unsigned i = 0; i < 2; i++) {
                    unsigned yy = y + i;
                    if (v2) {
                        unsigned c0 = yy / 2, c1 = yy & 1 ? (c0 + 1 < ch ? c0 + 1 : ch - 1) : (c0 ? c0 - 1 : 0);
                        column_sums(cs[i][0], B[c0 & 15], B[c1 & 15], cw);
                        column_sums(cs[i][1], R[c0 & 15], R[c1 & 15], cw);
                    } else {
                        column_copy(cs[i][0], B[yy & 15], cw);
                        column_copy(cs[i][1], R[yy & 15], cw);
                    }
                }
                uint8_t** o = one.slot();
                const uint8_t *ya = Y[y & (2 * MR - 1)], *yb = Y[(y + 1) & (2 * MR - 1)];
                if (v2)
                    first_halving<true>(o[0], o[1], o[2], one.w, ya, cs[0][0], cs[0][1], yb, cs[1][0], cs[1][1]);
                else
                    first_halving<false>(o[0], o[1], o[2], one.w, ya, cs[0][0], cs[0][1], yb, cs[1][0], cs[1][1]);
                one.commit();
            }
        }
        if (d.output_scanline < d.output_height)
            jpeg_abort_decompress(&d);
        else
            jpeg_finish_decompress(&d);
    }
    for (unsigned k = 1; k <= top; k++)
        pl[k]->finish();
    return true;
}
#else
bool Worker::levels_raw(const uint8_t* p, size_t n, unsigned L, bool gen_thumb, const std::vector<Seg>* segs) {
    return levels_stream(p, n, L, gen_thumb, segs);
}
#endif
