package com.tavrint.demo;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.LabelPass.Blocker;
import com.tavrint.demo.LabelPass.Story;
import com.tavrint.demo.Scene.Label;
import java.util.List;
import java.util.Locale;

/** The story of one city in a pass, told for --explain: why it is on the map or not. */
final class Explain {
    private Explain() {}

    /** How many cities of the same name are told, most populous first. */
    private static final int MAX_NAMESAKES = 3;

    static String story(String name, List<City> cities, Scene scene, LabelPass.Result r) {
        StringBuilder out = new StringBuilder();
        int told = 0;
        for (City c : cities) {
            if (!c.name().equals(name)) continue;
            if (told++ == MAX_NAMESAKES) {
                out.append("(more places of that name left out)\n");
                break;
            }
            tell(c, scene, r, out);
        }
        if (told == 0) out.append("no city named \"").append(name).append("\" in the data\n");
        return out.toString();
    }

    private static void tell(City c, Scene scene, LabelPass.Result r, StringBuilder out) {
        out.append(String.format(Locale.ROOT, "%s (%s), population %,d, %s%s%n", c.name(),
                c.country(), c.population(), c.feature().isEmpty() ? "no feature code" : c.feature(),
                c.isCapital() ? " (capital)" : ""));
        Projection p = scene.projection();
        if (!p.isOnCanvas(c.lon(), c.lat())) {
            out.append("  not on the canvas\n");
            return;
        }
        if (c.isSection()) {
            out.append("  left out of the map: a section of a larger place (district, new town)\n");
            return;
        }
        City larger = scene.spacedOut().get(c);
        if (larger != null) {
            out.append(String.format(Locale.ROOT,
                    "  left out before the pass: it lies in the room kept around %s (%,d), %.0f px"
                            + " away%n",
                    larger.name(), larger.population(), Math.hypot(p.x(c.lon()) - p.x(larger.lon()),
                            p.y(c.lat()) - p.y(larger.lat()))));
            return;
        }
        List<Label> labels = scene.labels();
        int i = 0;
        while (i < labels.size() && labels.get(i).city() != c) i++;
        if (i == labels.size()) {
            out.append("  not offered: the pass takes only the first ").append(labels.size())
                    .append(" cities of the canvas\n");
            return;
        }
        Label l = labels.get(i);
        Story s = r.stories()[i];
        int k = r.chosen()[i];
        out.append(String.format(Locale.ROOT, "  %d. of %d in the pass, style %s, at pixel (%d, %d)%n",
                i + 1, labels.size(), l.style().name().toLowerCase(Locale.ROOT), l.px(), l.py()));
        Candidates cand = l.candidates();
        if (cand.isEmpty()) {
            out.append("  left out: no position of its name fits the canvas\n");
            return;
        }
        if (k == LabelPass.DOT_BLOCKED) {
            out.append("  dot: blocked by ").append(s.dotBlocker.name())
                    .append(" placed before it; the city is left out\n");
            return;
        }
        out.append(s.dotOnLine ? "  dot: placed over a border (only a border was in its way)\n"
                : "  dot: placed\n");
        out.append("  name, positions in the order tried:\n");
        boolean taken = false;
        for (int n = 0; n < s.order.length; n++) {
            int at = s.order[n];
            out.append("    ").append(position(cand, at)).append(": ");
            String deferred = s.deferred.get(at);
            String why;
            if (at == k) {
                why = s.acrossLine ? "taken, across a border (nothing else was free)" : "taken";
                taken = true;
            } else if (taken) {
                why = "not needed";
            } else if (k >= 0) {
                why = "not free";
            } else {
                Blocker b = s.blocker(at);
                why = b == null ? "nothing in the way now (its blocker was taken back)"
                        : "blocked by " + b.name();
            }
            out.append(why);
            if (deferred != null) {
                out.append(" (tried late: covers the dot of ").append(deferred)
                        .append(", still to come)");
            }
            out.append('\n');
        }
        for (Candidates.Position pos : Candidates.Position.values()) {
            if (cand.indexOf(pos) < 0) {
                out.append("    ").append(pos.name().toLowerCase(Locale.ROOT))
                        .append(": ").append(LabelPass.OFF_CANVAS).append('\n');
            }
        }
        out.append(k >= 0 ? "  labelled " + position(cand, k) + "\n"
                : "  left out: its name found no room, and its dot was taken back\n");
    }

    private static String position(Candidates cand, int k) {
        return cand.position(k).name().toLowerCase(Locale.ROOT).replace('_', ' ');
    }
}
