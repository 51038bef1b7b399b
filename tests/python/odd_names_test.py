"""libqcc and libqmSSTRc: names and keys of any length and any characters go in and come back unchanged."""
import libqcc as qc
import libqmSSTRc as ss
from qcc_support import HostTest, native_text
from small_figure import small_body
from support import main

ODD_NAMES = [native_text(name) for name in (
    b"", b".", b"a.b", b" ", b"two words", b"\"double\"", b"'single'", b"back\\slash\\", b"tab\tand\x7f", b"line\nbreak",
    b"comma,semicolon;", b"h\xc3\xbcfte", b"\xc3\xa9", b"e\xcc\x81", b"\xf0\x9f\x98\x80", b"100%", b"%s%n%d%5$s%",
    b"a", b"aa", b"aaa", b"NULL", b"_0_qcSite_p", b"{}[]<>&~/0", b"k" * 100000, b"k" * 99999 + b"K")]
LONGEST_LINE = 2047   # bytes


def odd_body(name):
    """A small body with a segment, its site and a joint of that name, and the figure too."""
    body = small_body(name)
    body.segment(name, 1000, [0, 0, 0], [0, 0, 0])
    body.site(name, name, [-20, 72, 0])
    body.joint(name, "right_hand.proximal", name + "." + name)
    return body.text()


class OddNames(HostTest):

    def each(self, check):
        for name in ODD_NAMES:
            human = qc.qcScene_addPosedHuman(self.scene, odd_body(name))
            self.assertNotEqual(human, "NULL", name[:40])
            check(name, human, qc.qcHuman_getFigure(human))

    def test_names_are_found_and_told(self):
        def check(name, human, figure):
            self.assertEqual(qc.qcHuman_getName(human), name)
            site = qc.qcFigure_findSite(figure, name + "." + name)
            self.assertEqual(qc.qcSite_getName(site), name)
            self.assertEqual(qc.qcSite_getFullName(site), ".".join([name] * 3))
            self.assertEqual(qc.qcJoint_getName(qc.qcFigure_findJoint(figure, name)), name)
            self.assertEqual(qc.qcSegment_getName(qc.qcFigure_findSegment(figure, name)), name)
            self.assertEqual(qc.qcFigure_findSegment(figure, name + "?"), "NULL")
        self.each(check)

    def test_loads_of_theirs_are_set_reported_reset_and_removed(self):
        def check(name, human, figure):
            analysis = self.analysis_of(human)
            site = qc.qcFigure_findSite(figure, name + "." + name)
            self.assertEqual(ss.qmStaticStrength_setWeightLoad(analysis, site, 1500), 1)
            self.assertEqual(ss.qmStaticStrength_reset(analysis), 1)
            self.assertEqual(ss.qmStaticStrength_getNthLoadSite(analysis, 0), site)
            self.assertEqual(ss.qmStaticStrength_getSiteWeight(analysis, site), 1500)
            tail = "\tWeight: 1500.0 gr"
            self.assertEqual(ss.qmStaticStrength_reportLoads(analysis, 1),
                             (name + "." + name)[:LONGEST_LINE - len(tail)] + tail)
            self.assertEqual(ss.qmStaticStrength_reportLoads(analysis), 'Strategy: "Two Feet"')
            self.assertEqual(ss.qmStaticStrength_removeLoad(analysis, site), 1)
            self.assertEqual(ss.qmStaticStrength_getNumLoads(analysis), 0)
        self.each(check)

    def test_keys_and_texts_of_properties_come_back(self):
        def check(name, human, figure):
            site = qc.qcFigure_findSite(figure, name + "." + name)
            qc.qcObject_setProperty(site, name, [name, [name, 1.5]])
            self.assertEqual(qc.qcObject_getProperty(site, name), [name, [name, 1.5]])
            self.assertEqual(qc.qcObject_getProperty(site, name + "?"), None)
            self.assertEqual(qc.qcObject_getProperty(figure, name), None)
        self.each(check)

    def test_a_saved_scene_holds_them_all(self):
        def check(name, human, figure):
            qc.qcObject_setProperty(qc.qcFigure_findSite(figure, name + "." + name), name, name)
        self.each(check)
        path = self.path("odd.json")
        self.assertEqual(qc.qcScene_save(self.scene, path), 1)
        opened = qc.qcScene_open(path)
        self.assertNotEqual(opened, "NULL")
        humans = qc.qcScene_getHumans(opened)
        self.assertEqual([qc.qcHuman_getName(human) for human in humans], ODD_NAMES)
        for name, human in zip(ODD_NAMES, humans):
            site = qc.qcFigure_findSite(qc.qcHuman_getFigure(human), name + "." + name)
            self.assertEqual(qc.qcObject_getProperty(site, name), name)
        qc.qcScene_close(opened)

    def test_unreadable_entry_is_quoted_whole(self):
        def check(name, human, figure):
            analysis = self.analysis_of(human)
            qc.qcObject_setProperty(figure, "SSTR_LoadList", [[name]])
            self.assertEqual(ss.qmStaticStrength_reset(analysis), 0)
            messages = qc.qcMessages_take()
            self.assertEqual(messages, [("warning", "StaticStrength WARNING: cannot parse (\"%s\")\n" % name)])
        self.each(check)


if __name__ == "__main__":
    main()
