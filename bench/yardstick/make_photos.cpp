// make_photos: writes a reproducible set of camera-like JPEG photographs.
//
//   make_photos OUTDIR COUNT WIDTHxHEIGHT [options]
//     --seed N          first seed (default 1); photo i uses seed N + i
//     --quality N       encoder quality (default 92)
//     --sampling S      420 (default), 422 or 444
//     --thumb T         mix (default: every 4th photo has none), all, none
//     --orient O        mix (default: mostly 1, some 6, 8 and 3) or a number
//     --texture PCT     scales texture and sensor noise (default 100)
//
// The pixels are built from integer arithmetic only, so the same arguments
// give the same bytes on every machine with the same JPEG library.  A picture
// is a vertical gradient with hue drifts, eight octaves of value noise whose
// strength changes over the frame (sharp and out-of-focus regions), some
// hundred anti-aliased ellipses, bars and boxes, and sensor noise with a
// short correlation length.  The spectrum falls roughly as 1/f, which is what
// makes the entropy of the coefficients camera-like.
//
// The EXIF block (APP1, no JFIF marker, as cameras write it) has IFD0, the
// Exif IFD, a GPS IFD, a 2 KiB opaque maker note and, where asked for, IFD1
// with a 160 x 120 JPEG thumbnail (4:2:2).  Byte order alternates.

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>
// libjpeg's header needs <cstdio> before it.
#include <jpeglib.h>

namespace {

uint64_t mix64(uint64_t z) {
    z += 0x9E3779B97F4A7C15ull;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}
uint32_t hash32(uint32_t x, uint32_t y, uint32_t s) {
    uint32_t h = x * 0x85EBCA6Bu ^ y * 0xC2B2AE35u ^ s * 0x27D4EB2Fu;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    h ^= h >> 15;
    return h;
}
struct Rng {
    uint64_t s;
    uint32_t next() {
        s += 0x9E3779B97F4A7C15ull;
        return uint32_t(mix64(s) >> 32);
    }
    int range(int lo, int hi) { return lo + int(uint64_t(next()) * uint64_t(hi - lo + 1) >> 32); }
};

// One octave of value noise, cell size 2^k, values -128..127 (times 1).
struct Octave {
    int k, w;
    uint32_t seed;
    int have = -1;              // lattice row held in a
    std::vector<int16_t> a, b;  // interpolated lattice rows, scaled by 16
    std::vector<int16_t> sm;    // smoothstep weights 0..256 for one cell
    void init(int k_, int w_, uint32_t seed_) {
        k = k_;
        w = w_;
        seed = seed_;
        a.resize(w + 1024);
        b.resize(w + 1024);
        int c = 1 << k;
        sm.resize(c);
        for (int i = 0; i < c; i++) {
            int64_t t = (int64_t(i) << 12) / c;  // 0..4095
            sm[i] = int16_t((t * t / 4096 * (3 * 4096 - 2 * t) / 4096) >> 4);
        }
    }
    void lattice(int row, std::vector<int16_t>& o) {
        int c = 1 << k;
        for (int x = 0, i = 0; x < w; x += c, i++) {
            int p = int(hash32(i, row, seed) & 255) - 128, q = int(hash32(i + 1, row, seed) & 255) - 128;
            for (int j = 0; j < c; j++)
                o[x + j] = int16_t((p * 256 + (q - p) * sm[j]) >> 4);
        }
    }
    // adds amp/256 of the octave's row y to out (units 1/16 level)
    void row(int y, int amp, int32_t* out) {
        int r = y >> k, j = y & ((1 << k) - 1);
        if (have != r) {
            if (have == r - 1) {
                std::swap(a, b);
            } else
                lattice(r, a);
            lattice(r + 1, b);
            have = r;
        }
        int wy = sm[j];
        const int16_t *pa = a.data(), *pb = b.data();
        for (int x = 0; x < w; x++) {
            int v = (pa[x] * (256 - wy) + pb[x] * wy) >> 8;  // 1/16 units
            out[x] += (v * amp) >> 8;
        }
    }
};

struct Shape {
    int kind, cx, cy, rx, ry, slope, col[3], shade, alpha;
};

int isqrt64(int64_t v) {
    int64_t r = 0, b = 1ll << 62;
    while (b > v)
        b >>= 2;
    while (b) {
        if (v >= r + b) {
            v -= r + b;
            r = (r >> 1) + b;
        } else
            r >>= 1;
        b >>= 2;
    }
    return int(r);
}

void put_jpeg(j_compress_ptr c, FILE* f) {
    jpeg_stdio_dest(c, f);
}

// ---- EXIF ----------------------------------------------------------------
struct Exif {
    bool be;
    std::vector<uint8_t> d;  // TIFF structure, offset 0 = header
    void u16at(size_t o, unsigned v) {
        if (be) {
            d[o] = v >> 8;
            d[o + 1] = v;
        } else {
            d[o] = v;
            d[o + 1] = v >> 8;
        }
    }
    void u32at(size_t o, uint32_t v) {
        for (int i = 0; i < 4; i++)
            d[o + i] = uint8_t(v >> (be ? 24 - 8 * i : 8 * i));
    }
    struct Ent {
        unsigned tag, type;
        uint32_t count;
        std::vector<uint8_t> v;
    };
    std::vector<uint8_t> b16(std::vector<unsigned> l) {
        std::vector<uint8_t> r;
        for (unsigned v : l) {
            if (be) {
                r.push_back(v >> 8);
                r.push_back(v);
            } else {
                r.push_back(v);
                r.push_back(v >> 8);
            }
        }
        return r;
    }
    std::vector<uint8_t> b32(std::vector<uint32_t> l) {
        std::vector<uint8_t> r;
        for (uint32_t v : l)
            for (int i = 0; i < 4; i++)
                r.push_back(uint8_t(v >> (be ? 24 - 8 * i : 8 * i)));
        return r;
    }
    Ent text(unsigned t, const std::string& s) {
        Ent e{t, 2, uint32_t(s.size() + 1), {}};
        e.v.assign(s.begin(), s.end());
        e.v.push_back(0);
        return e;
    }
    Ent s16(unsigned t, unsigned v) { return {t, 3, 1, b16({v})}; }
    Ent s32(unsigned t, uint32_t v) { return {t, 4, 1, b32({v})}; }
    Ent rat(unsigned t, std::vector<uint32_t> v, bool sg = false) {
        uint32_t n = v.size() / 2;
        return {t, sg ? 10u : 5u, n, b32(v)};
    }
    Ent raw(unsigned t, std::vector<uint8_t> v, unsigned type = 7) {
        uint32_t n = v.size();
        return {t, type, n, std::move(v)};
    }
    // writes an IFD at the end, returns its offset; *next is where the link lies
    uint32_t ifd(std::vector<Ent> es, size_t* next, std::vector<size_t>* where = nullptr) {
        std::sort(es.begin(), es.end(), [](const Ent& a, const Ent& b) { return a.tag < b.tag; });
        if (d.size() & 1)
            d.push_back(0);
        uint32_t off = d.size();
        d.resize(off + 2 + 12 * es.size() + 4);
        u16at(off, es.size());
        for (size_t i = 0; i < es.size(); i++) {
            size_t o = off + 2 + 12 * i;
            u16at(o, es[i].tag);
            u16at(o + 2, es[i].type);
            u32at(o + 4, es[i].count);
            if (es[i].v.size() <= 4) {
                std::copy(es[i].v.begin(), es[i].v.end(), d.begin() + o + 8);
            } else {
                if (d.size() & 1)
                    d.push_back(0);
                uint32_t p = d.size();
                d.insert(d.end(), es[i].v.begin(), es[i].v.end());
                u32at(o + 8, p);
            }
            if (where)
                where->push_back(o + 8);
        }
        *next = off + 2 + 12 * es.size();
        return off;
    }
};

std::vector<uint8_t> make_exif(int idx, int w, int h, int orient, const std::vector<uint8_t>& thumb, Rng& g) {
    Exif e;
    e.be = idx & 1;
    e.d.assign(8, 0);
    e.d[0] = e.d[1] = e.be ? 'M' : 'I';
    e.u16at(2, 42);
    e.u32at(4, 8);
    char date[32];
    snprintf(date, sizeof date, "2024:%02d:%02d %02d:%02d:%02d", 1 + idx % 12, 1 + idx % 28, 6 + idx % 14, idx * 7 % 60,
             idx * 13 % 60);
    size_t n0, nx, ng, n1;
    std::vector<Exif::Ent> z = {e.text(0x010E, "synthetic frame"),
                                e.text(0x010F, "BENCH OPTICS CO."),
                                e.text(0x0110, "BO-" + std::to_string((int64_t(w) * h + 500000) / 1000000)),
                                e.s16(0x0112, orient),
                                e.rat(0x011A, {72, 1}),
                                e.rat(0x011B, {72, 1}),
                                e.s16(0x0128, 2),
                                e.text(0x0131, "Ver.1.02"),
                                e.text(0x0132, date),
                                e.text(0x8298, ""),
                                e.s16(0x0213, 2),
                                e.s32(0x8769, 0),
                                e.s32(0x8825, 0)};
    std::vector<size_t> wz;
    std::sort(z.begin(), z.end(), [](const Exif::Ent& a, const Exif::Ent& b) { return a.tag < b.tag; });
    e.ifd(z, &n0, &wz);
    size_t pexif = 0, pgps = 0;
    for (size_t i = 0; i < z.size(); i++) {
        if (z[i].tag == 0x8769)
            pexif = wz[i];
        if (z[i].tag == 0x8825)
            pgps = wz[i];
    }
    std::vector<uint8_t> note(2048);
    memcpy(note.data(), "BENCHOPT\0\1\0\0", 12);
    for (size_t i = 12; i < note.size(); i++)
        note[i] = uint8_t(g.next() >> 24) & ((i & 64) ? 0xFF : 0x07);
    static const uint32_t speeds[] = {60, 125, 250, 500, 1000, 30, 2000, 4};
    uint32_t fl = 12 + g.range(0, 120);
    uint32_t o = e.ifd({e.rat(0x829A, {1, speeds[idx % 8]}),
                        e.rat(0x829D, {uint32_t(28 + g.range(0, 80)), 10}),
                        e.s16(0x8822, 1 + idx % 8),
                        e.s16(0x8827, 100u << (idx % 6)),
                        e.s16(0x8830, 2),
                        e.s32(0x8831, 100u << (idx % 6)),
                        e.raw(0x9000, {'0', '2', '3', '0'}),
                        e.text(0x9003, date),
                        e.text(0x9004, date),
                        e.raw(0x9101, {1, 2, 3, 0}),
                        e.rat(0x9102, {2, 1}),
                        e.rat(0x9202, {uint32_t(300 + g.range(0, 300)), 100}),
                        e.rat(0x9204, {uint32_t(idx % 5 - 2), 3}, true),
                        e.rat(0x9205, {497, 256}),
                        e.s16(0x9207, 5),
                        e.s16(0x9208, 0),
                        e.s16(0x9209, idx % 7 ? 16 : 9),
                        e.rat(0x920A, {fl, 1}),
                        e.raw(0x927C, note),
                        e.raw(0x9286, std::vector<uint8_t>(125, ' ')),
                        e.raw(0xA000, {'0', '1', '0', '0'}),
                        e.s16(0xA001, 1),
                        e.s32(0xA002, w),
                        e.s32(0xA003, h),
                        e.raw(0xA300, {3}),
                        e.s16(0xA401, 0),
                        e.s16(0xA402, 0),
                        e.s16(0xA403, idx % 2),
                        e.rat(0xA404, {100, 100}),
                        e.s16(0xA405, fl * 2),
                        e.s16(0xA406, 0),
                        e.s16(0xA407, 0),
                        e.s16(0xA408, 0),
                        e.s16(0xA409, 0),
                        e.s16(0xA40A, 0),
                        e.text(0xA434, "BO ZOOM 12-132mm F2.8")},
                       &nx);
    e.u32at(pexif, o);
    o = e.ifd({e.raw(0, {2, 3, 0, 0}, 1), e.text(1, "N"), e.rat(2, {52, 1, 31, 1, 12, 1}), e.text(3, "E"),
               e.rat(4, {13, 1, 24, 1, 36, 1})},
              &ng);
    e.u32at(pgps, o);
    if (!thumb.empty()) {
        std::vector<size_t> w1;
        o = e.ifd({e.s16(0x0103, 6), e.rat(0x011A, {72, 1}), e.rat(0x011B, {72, 1}), e.s16(0x0128, 2), e.s32(0x0201, 0),
                   e.s32(0x0202, thumb.size())},
                  &n1, &w1);
        e.u32at(n0, o);
        if (e.d.size() & 1)
            e.d.push_back(0);
        e.u32at(w1[4], e.d.size());
        e.d.insert(e.d.end(), thumb.begin(), thumb.end());
    }
    std::vector<uint8_t> r(6 + e.d.size());
    memcpy(r.data(), "Exif\0", 6);
    std::copy(e.d.begin(), e.d.end(), r.begin() + 6);
    return r;
}

struct Opt {
    int quality = 92, sampling = 420, thumb = 0, orient = 0, texture = 100;
    uint64_t seed = 1;
};

void setup(j_compress_ptr c, int w, int h, int q, int sampling) {
    c->image_width = w;
    c->image_height = h;
    c->input_components = 3;
    c->in_color_space = JCS_RGB;
    jpeg_set_defaults(c);
    jpeg_set_quality(c, q, TRUE);
    c->comp_info[0].h_samp_factor = sampling == 444 ? 1 : 2;
    c->comp_info[0].v_samp_factor = sampling == 420 ? 2 : 1;
    c->write_JFIF_header = FALSE;
}

void photo(const std::string& path, int idx, int w, int h, const Opt& opt) {
    uint64_t seed = opt.seed + idx;
    Rng g{mix64(seed * 7919 + 17)};
    const int NO = 8;
    Octave oct[NO], hue[2], mask, cn;
    for (int i = 0; i < NO; i++)
        oct[i].init(i + 1, w, g.next());
    hue[0].init(9, w, g.next());
    hue[1].init(7, w, g.next());
    mask.init(9, w, g.next());
    cn.init(2, w, g.next());
    uint32_t nseed = g.next();
    // scene: how much of the frame is in focus, how strong the texture is, ISO
    int focus = g.range(70, 200), tex = g.range(60, 130), iso = g.range(50, 130);
    int top[3], bot[3];
    for (int c = 0; c < 3; c++) {
        top[c] = g.range(90, 220);
        bot[c] = g.range(40, 170);
    }
    int horizon = h * g.range(20, 70) / 100;
    std::vector<Shape> shapes;
    int ns = g.range(60, 220);
    for (int i = 0; i < ns; i++) {
        Shape s;
        s.kind = g.range(0, 2);
        int big = g.range(0, 9) == 0 ? 6 : 1;
        s.cx = g.range(0, w - 1);
        s.cy = g.range(horizon / 2, h - 1);
        s.rx = w * g.range(3, 40) * big / 1600 + 2;
        s.ry = h * g.range(3, 60) * big / 1600 + 2;
        s.slope = g.range(-64, 64);
        for (int c = 0; c < 3; c++)
            s.col[c] = g.range(10, 245);
        s.shade = g.range(-60, 60);
        s.alpha = g.range(130, 256);
        shapes.push_back(s);
    }
    // amplitude of the octaves (cells 2, 4, 8 ... 256 px), in 1/256
    static const int amp0[NO] = {52, 84, 96, 80, 64, 48, 40, 36};

    int tw = 160, th = 120;
    std::vector<uint8_t> tb(size_t(tw) * th * 3, 0);
    std::vector<uint8_t> pix;  // whole picture, RGB
    pix.resize(size_t(w) * h * 3);
    std::vector<int32_t> fine(w), coarse(w), m(w), h0(w), h1(w), cno(w), nz(w + 4);
    for (int y = 0; y < h; y++) {
        std::fill(fine.begin(), fine.end(), 0);
        std::fill(coarse.begin(), coarse.end(), 0);
        std::fill(m.begin(), m.end(), 0);
        std::fill(h0.begin(), h0.end(), 0);
        std::fill(h1.begin(), h1.end(), 0);
        std::fill(cno.begin(), cno.end(), 0);
        for (int i = 0; i < NO; i++)
            oct[i].row(y, amp0[i], (i < 5 ? fine : coarse).data());
        mask.row(y, 256, m.data());
        hue[0].row(y, 90, h0.data());
        hue[1].row(y, 60, h1.data());
        cn.row(y, 8 + iso / 6, cno.data());
        for (int x = 0; x < w + 4; x++) {
            uint32_t r = hash32(x, y, nseed);
            nz[x] = int(r & 255) + int(r >> 8 & 255) - int(r >> 16 & 255) - int(r >> 24);  // +-510, sigma ~148
        }
        uint8_t* o = &pix[size_t(y) * w * 3];
        int base[3];
        for (int c = 0; c < 3; c++) {
            base[c] = y < horizon ? top[c] + (int64_t(bot[c] + 40 - top[c]) * y / (horizon + 1)) / 2
                                  : bot[c] + 20 - int(int64_t(30) * (y - horizon) / (h - horizon + 1));
        }
        int sky = y < horizon ? 40 : 100;
        for (int x = 0; x < w; x++) {
            // texture strength at this point: 0 (smooth) .. 256 (sharp)
            int f = (m[x] >> 3) + focus;  // m is +-2048
            f = f < 12 ? 12 : f > 256 ? 256 : f;
            int t = (fine[x] * f >> 8) * tex / 100 * sky / 100 * opt.texture / 50 + coarse[x];
            int n = (nz[x] * 2 + nz[x + 1] * 2 + nz[x + 2]) * iso / 512 * opt.texture / 50;  // 1/16 level
            int v = t + n;
            int r = base[0] * 16 + v + h0[x] + cno[x], gg = base[1] * 16 + v + (h1[x] >> 1),
                b = base[2] * 16 + v - h0[x] + h1[x] - cno[x];
            // lens shading, a mild vignette
            int64_t dx = x * 2 - w, dy = y * 2 - h;
            int vg = 256 - int((dx * dx * 40 / (int64_t(w) * w)) + (dy * dy * 30 / (int64_t(h) * h)));
            r = (r * vg) >> 12;
            gg = (gg * vg) >> 12;
            b = (b * vg) >> 12;
            o[3 * x] = r < 0 ? 0 : r > 255 ? 255 : r;
            o[3 * x + 1] = gg < 0 ? 0 : gg > 255 ? 255 : gg;
            o[3 * x + 2] = b < 0 ? 0 : b > 255 ? 255 : b;
        }
        for (const Shape& s : shapes) {
            int yy = y - s.cy;
            if (yy < -s.ry || yy > s.ry)
                continue;
            int64_t half = 0, cx = int64_t(s.cx) * 256;
            if (s.kind == 0)
                half = int64_t(s.rx) * isqrt64(65536ll * (int64_t(s.ry) * s.ry - int64_t(yy) * yy)) / s.ry;
            else if (s.kind == 1) {
                half = int64_t(s.rx) * 256;
                cx += int64_t(yy) * s.slope * 4;
            } else {
                half = int64_t(s.rx) * 256 * (s.ry - std::abs(yy)) / s.ry / 2 + 256;
                cx += int64_t(yy) * s.slope;
            }
            int64_t l = cx - half, r = cx + half;
            int x0 = std::max<int64_t>(0, l >> 8), x1 = std::min<int64_t>(w - 1, r >> 8);
            for (int x = x0; x <= x1; x++) {
                int a = s.alpha;
                if (x == (l >> 8))
                    a = a * (256 - (l & 255)) >> 8;
                if (x == (r >> 8))
                    a = a * (r & 255) >> 8;
                int sh = s.shade * yy / s.ry + (nz[x] * iso >> 12);
                for (int c = 0; c < 3; c++) {
                    int v = s.col[c] + sh + (fine[x] >> 6);
                    v = v < 0 ? 0 : v > 255 ? 255 : v;
                    o[3 * x + c] = uint8_t((o[3 * x + c] * (256 - a) + v * a) >> 8);
                }
            }
        }
    }
    // a camera's own processing softens the pixel grid a little: 3-tap filters
    {
        std::vector<uint8_t> prev(w * 3), cur(w * 3);
        for (int y = 0; y < h; y++) {
            uint8_t* o = &pix[size_t(y) * w * 3];
            for (int i = 0; i < w * 3; i++) {
                int l = i >= 3 ? o[i - 3] : o[i], r = i + 3 < w * 3 ? o[i + 3] : o[i];
                cur[i] = uint8_t((l + 6 * o[i] + r + 4) >> 3);
            }
            memcpy(o, cur.data(), w * 3);
        }
        memcpy(prev.data(), &pix[0], w * 3);
        for (int y = 1; y + 1 < h; y++) {
            uint8_t *o = &pix[size_t(y) * w * 3], *nx = o + size_t(w) * 3;
            for (int i = 0; i < w * 3; i++) {
                int v = (prev[i] + 6 * o[i] + nx[i] + 4) >> 3;
                prev[i] = o[i];
                o[i] = uint8_t(v);
            }
        }
    }
    std::vector<uint8_t> thumb;
    bool want = opt.thumb == 1 || (opt.thumb == 0 && idx % 4 != 3);
    if (want) {
        // fitted into 160 x 120 with black bars, as cameras do
        int fw = tw, fh = int(int64_t(tw) * h / w);
        if (fh > th) {
            fh = th;
            fw = int(int64_t(th) * w / h);
        }
        int ox = (tw - fw) / 2, oy = (th - fh) / 2;
        for (int y = 0; y < fh; y++)
            for (int x = 0; x < fw; x++) {
                int64_t s[3] = {0, 0, 0};
                int n = 0;
                for (int yy = int64_t(y) * h / fh; yy < int64_t(y + 1) * h / fh; yy += 3)
                    for (int xx = int64_t(x) * w / fw; xx < int64_t(x + 1) * w / fw; xx += 3) {
                        const uint8_t* p = &pix[(size_t(yy) * w + xx) * 3];
                        s[0] += p[0];
                        s[1] += p[1];
                        s[2] += p[2];
                        n++;
                    }
                for (int c = 0; c < 3; c++)
                    tb[(size_t(y + oy) * tw + x + ox) * 3 + c] = n ? uint8_t(s[c] / n) : 0;
            }
        jpeg_compress_struct c;
        jpeg_error_mgr je;
        c.err = jpeg_std_error(&je);
        jpeg_create_compress(&c);
        unsigned char* mem = nullptr;
        unsigned long len = 0;
        jpeg_mem_dest(&c, &mem, &len);
        setup(&c, tw, th, 85, 422);
        jpeg_start_compress(&c, TRUE);
        while (c.next_scanline < c.image_height) {
            JSAMPROW r = &tb[size_t(c.next_scanline) * tw * 3];
            jpeg_write_scanlines(&c, &r, 1);
        }
        jpeg_finish_compress(&c);
        jpeg_destroy_compress(&c);
        thumb.assign(mem, mem + len);
        free(mem);
    }
    static const int om[10] = {1, 1, 6, 1, 1, 8, 1, 1, 6, 3};
    int orient = opt.orient ? opt.orient : om[idx % 10];
    std::vector<uint8_t> exif = make_exif(idx, w, h, orient, thumb, g);

    FILE* f = fopen(path.c_str(), "wb");
    if (!f) {
        perror(path.c_str());
        exit(1);
    }
    jpeg_compress_struct c;
    jpeg_error_mgr je;
    c.err = jpeg_std_error(&je);
    jpeg_create_compress(&c);
    put_jpeg(&c, f);
    setup(&c, w, h, opt.quality, opt.sampling);
    jpeg_start_compress(&c, TRUE);
    jpeg_write_marker(&c, JPEG_APP0 + 1, exif.data(), exif.size());
    while (c.next_scanline < c.image_height) {
        JSAMPROW r = &pix[size_t(c.next_scanline) * w * 3];
        jpeg_write_scanlines(&c, &r, 1);
    }
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
    fclose(f);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        fprintf(stderr,
                "usage: make_photos OUTDIR COUNT WIDTHxHEIGHT [--seed N] [--quality N] [--sampling 420|422|444] "
                "[--thumb mix|all|none] [--orient mix|N] [--texture PCT] [-j N]\n");
        return 2;
    }
    std::string dir = argv[1];
    int n = atoi(argv[2]), w = 0, h = 0, jobs = 1;
    if (n < 1 || sscanf(argv[3], "%dx%d", &w, &h) != 2 || w < 16 || h < 16) {
        fprintf(stderr, "bad count or size\n");
        return 2;
    }
    Opt o;
    for (int i = 4; i + 1 < argc; i += 2) {
        std::string a = argv[i], v = argv[i + 1];
        if (a == "--seed")
            o.seed = strtoull(v.c_str(), nullptr, 10);
        else if (a == "--quality")
            o.quality = atoi(v.c_str());
        else if (a == "--sampling")
            o.sampling = atoi(v.c_str());
        else if (a == "--thumb")
            o.thumb = v == "all" ? 1 : v == "none" ? 2 : 0;
        else if (a == "--orient")
            o.orient = atoi(v.c_str());
        else if (a == "--texture")
            o.texture = atoi(v.c_str());
        else if (a == "-j")
            jobs = atoi(v.c_str());
        else {
            fprintf(stderr, "unknown option %s\n", a.c_str());
            return 2;
        }
    }
    mkdir(dir.c_str(), 0777);
    for (int j = 0; j < jobs; j++) {
        if (fork() == 0) {
            for (int i = j; i < n; i += jobs) {
                char name[64];
                snprintf(name, sizeof name, "/P%07d.jpg", 1010001 + i);
                photo(dir + name, i, w, h, o);
            }
            _exit(0);
        }
    }
    int st, bad = 0;
    while (wait(&st) > 0)
        if (st)
            bad = 1;
    return bad;
}
