// Cell and span edits of one row of runs.
//
// The edits follow fixed rules rather than producing the plain union or difference of cells:
// a span added next to a run widens that run only, so abutting runs may stay; a span whose
// low end falls in a gap and that reaches past the following run on both sides drops the runs
// between its two ends without adding its own cells; a span erased across several runs leaves
// copies of the last runs at the tail. Readers of rows tolerate all of these.
#include <algorithm>

#include "index/RLEIndex.h"

namespace {
using RunPos = CRLERow::RunPos;

// Frees cell x, which is p's start or p's end, by moving that bound inward; the run goes when
// it would become invalid.
void TrimEnd(RLERowRuns& row, const RunPos& p, int x) {
    if (x == p->start) {
        if (x >= p->end) {
            row.erase(p);
        } else {
            p->start = x + 1;
        }
    } else if (x <= p->start) {
        row.erase(p);
    } else {
        p->end = x - 1;
    }
}
}  // namespace

RunPos CRLERow::FindRLE(const RunPos& first, const RunPos& last, int x) {
    RunPos lo = first;
    RunPos hi = last;
    while (lo != hi) {
        if (lo->IsConnect(x)) return lo;
        if (hi->IsConnect(x)) return hi;
        const auto n = hi - lo;
        const RunPos mid = lo + n / 2;
        const int c = mid->Compare(x);
        if (c >= -1 && c <= 1) return mid;
        if (c < 0) {
            hi = mid;
        } else {
            if (n == 1) return hi;
            lo = mid;
        }
    }
    return lo;
}

bool CRLERow::Insert(const RunPos& first, const RunPos& last, int x) {
    const RunPos mid = first + (last - first) / 2;
    if (mid->Compare(x) == 0) return false;
    return mid->IsIn(x);
}

bool CRLERow::IsExist(int x) const {
    const RLERowRuns& v = *m_row;
    if (v.empty()) return false;
    const RLE cell(x);
    const auto it = std::lower_bound(v.begin(), v.end(), cell,
                                     [](const RLE& run, const RLE& c) { return run < c; });
    return it != v.end() && !(cell < *it);
}

bool CRLERow::Add(int x) {
    RLERowRuns& v = *m_row;
    if (v.empty()) {
        v.emplace_back(x);
        return true;
    }
    if (v.front().Compare(x) < -1) {
        v.insert(v.begin(), RLE(x));
        return true;
    }
    if (v.back().Compare(x) > 1) {
        v.emplace_back(x);
        return true;
    }
    if (v.size() == 1) {
        v.front().Union(RLE(x));
        return true;
    }
    const RunPos p = FindRLE(v.begin(), v.end() - 1, x);
    if (!p->IsConnect(x)) {
        v.insert(p, RLE(x));
        return true;
    }
    p->Union(x);
    // One cell closes at most one gap, so one merge is enough.
    if (p + 1 != v.end() && (p + 1)->IsConnect(*p)) {
        p->Union(*(p + 1));
        v.erase(p + 1);
    } else if (p != v.begin() && (p - 1)->IsConnect(*p)) {
        p->Union(*(p - 1));
        v.erase(p - 1);
    }
    return true;
}

bool CRLERow::Add(int a, int b) {
    if (a == b) return Add(a);
    RLERowRuns& v = *m_row;
    const int lo = std::min(a, b);
    const int hi = std::max(a, b);
    const RLE r(lo, hi);
    if (v.empty()) {
        v.push_back(r);
        return true;
    }
    if (v.front().start >= lo && v.back().end <= hi) {
        v.assign(1, r);
        return true;
    }
    if (v.front().Compare(hi) < -1) {
        v.insert(v.begin(), r);
        return true;
    }
    if (v.front().IsConnect(hi)) {
        v.front().Union(r);
        return true;
    }
    if (v.back().Compare(lo) > 1) {
        v.push_back(r);
        return true;
    }
    if (v.back().IsConnect(lo)) {
        v.back().Union(r);
        return true;
    }
    if (v.size() == 1) {
        v.front().Union(r);
        return false;
    }
    const RunPos p = FindRLE(v.begin(), v.end() - 1, lo);
    const RunPos q = FindRLE(v.begin(), v.end() - 1, hi);
    if (p == q) {
        if (p->Compare(hi) < -1) {
            v.insert(p, r);
            return true;
        }
        if (p->Compare(lo) > 1) {
            v.insert(p + 1, r);
            return true;
        }
    }
    // Only p takes r's cells; q keeps its bounds even when r reaches it.
    if (p->IsTouch(r)) p->Union(r);
    // Runs out of order (only a loaded block can hold them) may put q before p.
    if (p == q || q < p) return true;
    if (p->IsTouch(*q)) {
        p->Union(*q);
        v.erase(p + 1, q + 1);
    } else {
        v.erase(p + 1, q);
    }
    return true;
}

bool CRLERow::Erase(int x) {
    RLERowRuns& v = *m_row;
    if (v.empty()) return true;
    const RunPos p = FindRLE(v.begin(), v.end() - 1, x);
    const int c = p->Compare(x);
    if (c < -1 || c > 1) return false;
    if (x == p->start || x == p->end) {
        TrimEnd(v, p, x);
    } else if (c == 0) {
        const RLE before(p->start, x - 1);
        p->start = x + 1;
        v.insert(p, before);
    }
    return true;
}

bool CRLERow::Erase(int a, int b) {
    RLERowRuns& v = *m_row;
    if (v.empty()) return true;
    if (a == b) return Erase(a);
    const int lo = std::min(a, b);
    const int hi = std::max(a, b);
    if (v.front().start >= lo && v.back().end <= hi) {
        v.clear();
        return true;
    }
    Erase(lo);
    Erase(hi);
    if (v.empty() || v.front().start > hi || v.back().end < lo) return true;

    // Compacts the runs r does not match towards the front, then drops exactly one run just past
    // them: with k matched runs, k - 1 copies of the old tail stay behind.
    const CFindRLE matches(RLE(lo, hi));
    auto kept = std::find_if(v.begin(), v.end(), matches);
    if (kept != v.end()) {
        for (auto it = kept + 1; it != v.end(); ++it) {
            if (!matches(*it)) *kept++ = *it;
        }
    }
    if (kept == v.end()) {
        v.pop_back();
    } else {
        v.erase(kept);
    }
    return true;
}
