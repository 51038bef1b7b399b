"""libqcc: the simulation, the scripts that run in it, and messages."""
import errno
import os
import subprocess
import sys

import __main__
import libqcc as qc
import libqmSSTRc as ss
from qcc_support import DEFAULT_HUMAN, HostTest, native_text
from support import main

# of a file; the reason is the system's, in the process's language
MISSING = "error: %s: cannot be read: " + os.strerror(errno.ENOENT) + "."

BOUND = ("qc_simfunc", "StaticStrength")


class SimulationTest(HostTest):

    def setUp(self):
        HostTest.setUp(self)
        self.analysis = self.analysis_of(self.posed_human())
        # what scripts see and leave behind
        __main__.seen = []
        __main__.analysis = self.analysis
        __main__.qc = qc
        __main__.ss = ss

    def tearDown(self):
        HostTest.tearDown(self)
        self.assertEqual(qc.qcSim_getBound(), [])

    def activate(self, *script):
        self.assertEqual(ss.qmStaticStrength_activate(self.analysis, *script), 1)

    def traceback_of(self, script):
        """What is reported of a script that fails in a step; the callback stays bound."""
        self.activate(script)
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(qc.qcSim_getBound(), [BOUND])
        ss.qmStaticStrength_deactivate(self.analysis)
        return self.take_one_error()


class Simulation(SimulationTest):

    def test_without_callbacks_there_are_no_results(self):
        self.assertEqual(qc.qcSim_getBound(), [])
        for steps in (0, 1, 5):
            self.assertEqual(qc.qcSim_step(steps), [])

    def test_number_of_steps_is_not_negative(self):
        self.check_raises(ValueError, "Argument 1 of qcSim_step is a number of steps: expected 0 or more, found -1.",
                          qc.qcSim_step, -1)

    def test_results_are_those_of_the_last_step(self):
        other = self.analysis_of(self.posed_human("other"))
        self.activate("seen.append(1)\nif len(seen) == 2: ss.qmStaticStrength_deactivate(analysis)")
        ss.qmStaticStrength_activate(other)
        self.assertEqual(qc.qcSim_getBound(), [BOUND, BOUND])
        self.assertEqual(qc.qcSim_step(2), [1, 1])
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(len(__main__.seen), 2)

    def test_no_steps_have_no_results(self):
        self.activate()
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(qc.qcSim_step(0), [])

    def test_step_computes_before_its_script_runs(self):
        waist = qc.qcHuman_getWaistJoint(ss.qmStaticStrength_getHuman(self.analysis))
        __main__.waist = waist
        self.assertEqual(qc.qcObject_getProperty(waist, "SSTR_Force_Moment"), None)
        self.activate("seen.append(qc.qcObject_getProperty(waist, 'SSTR_Force_Moment'))")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(len(__main__.seen[0]), 2)
        self.assertEqual(__main__.seen, [qc.qcObject_getProperty(waist, "SSTR_Force_Moment")])


class Scripts(SimulationTest):

    def test_script_runs_once_a_step_in_main(self):
        self.activate("seen.append(__name__)\nleft_behind = len(seen)")
        self.assertEqual(qc.qcSim_step(3), [1])
        self.assertEqual(__main__.seen, ["__main__"] * 3)
        self.assertEqual(__main__.left_behind, 3)

    def test_script_runs_on_request(self):
        self.activate("seen.append(1)")
        self.assertEqual(ss.qmStaticStrength_run_script(self.analysis), None)
        self.assertEqual(__main__.seen, [1])

    def test_script_may_import_both_modules(self):
        self.activate("import libqcc, libqmSSTRc\nseen.append(libqcc is qc and libqmSSTRc is ss)")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(__main__.seen, [True])

    def test_script_may_deactivate_its_analysis(self):
        self.activate("seen.append(ss.qmStaticStrength_deactivate(analysis))\nseen.append(qc.qcSim_getBound())")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(__main__.seen, [1, []])
        self.assertEqual(qc.qcSim_step(1), [])

    def test_script_may_delete_its_analysis(self):
        self.activate("ss.delete_qmStaticStrength(analysis)\nseen.append(qc.qcSim_getBound())")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(__main__.seen, [[]])
        self.analyses.remove(self.analysis)

    def test_script_may_delete_its_analysis_and_close_the_scene(self):
        __main__.scene, self.scene = self.scene, None
        self.activate("ss.delete_qmStaticStrength(analysis)\nqc.qcScene_close(scene)\nseen.append(1)")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(__main__.seen, [1])
        self.analyses.remove(self.analysis)

    def test_script_may_close_the_scene_of_its_analysis(self):
        __main__.scene, self.scene = self.scene, None
        self.activate("if not seen: qc.qcScene_close(scene)\nseen.append(ss.qmStaticStrength_getHuman(analysis))")
        self.assertEqual(qc.qcSim_step(2), [1])
        self.assertEqual(__main__.seen, ["NULL", "NULL"])
        self.assertEqual(self.take_one_error(),  # of the second step
                         "StaticStrength ERROR: compute: the human of man is gone")

    def test_script_may_delete_another_analysis_before_and_after_its_turn(self):
        for victim in ("first", "last"):
            __main__.seen[:] = []
            names = ["first of " + victim, "middle of " + victim, "last of " + victim]
            analyses = [self.analysis_of(self.posed_human(name)) for name in names]
            __main__.other = analyses[victim == "last" and 2 or 0]
            for name, analysis in zip(("first", "middle", "last"), analyses):
                script = "seen.append(%r)" % name
                if name == "middle":
                    script += "\nif other: ss.delete_qmStaticStrength(other)\nother = None"
                self.assertEqual(ss.qmStaticStrength_activate(analysis, script), 1)
            self.analyses.remove(__main__.other)
            self.assertEqual(qc.qcSim_step(2), [1, 1])
            if victim == "first":
                self.assertEqual(__main__.seen, ["first", "middle", "last", "middle", "last"])
            else:
                self.assertEqual(__main__.seen, ["first", "middle", "first", "middle"])
            for analysis in analyses:
                if analysis in self.analyses:
                    ss.qmStaticStrength_deactivate(analysis)

    def test_script_may_bind_another_analysis_which_runs_from_the_next_step_on(self):
        __main__.other = self.analysis_of(self.posed_human("other"))
        self.activate("if not seen: ss.qmStaticStrength_activate(other)\nseen.append(1)")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(qc.qcSim_step(1), [1, 1])

    def test_script_may_step_the_simulation(self):
        self.activate("seen.append(1)\nif len(seen) == 1: seen.append(qc.qcSim_step(1))")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(__main__.seen, [1, 1, [1]])

    def test_lines_may_end_in_any_way(self):
        for script in ("if 1:\r\n  x = 1\r\n  seen.append(x)", "if 1:\r  x = 1\r  seen.append(x)",
                       "if 1:\n  x = 1\n  seen.append(x)\n", "if 1:\n  x = 1\n  seen.append(x)"):
            self.activate(script)
            self.assertEqual(qc.qcSim_step(1), [1])
            ss.qmStaticStrength_deactivate(self.analysis)
        self.assertEqual(__main__.seen, [1] * 4)

    def test_script_s_texts_may_be_of_any_language(self):
        self.activate("seen.append('" + native_text(b"gr\xc3\xbc\xc3\x9fe") + "')")
        self.assertEqual(qc.qcSim_step(1), [1])
        self.assertEqual(__main__.seen, [native_text(b"gr\xc3\xbc\xc3\x9fe")])

    def test_empty_script_and_comment_run(self):
        self.activate("# nothing")
        self.assertEqual(qc.qcSim_step(1), [1])


class FailingScripts(SimulationTest):

    def test_traceback_is_one_error_message(self):
        text = self.traceback_of("def divide(x):\n    return 1 // x\n\ndivide(0)")
        lines = [line for line in text.splitlines() if line.strip()]
        self.assertEqual(lines[:3], ["Traceback (most recent call last):", '  File "<string>", line 4, in <module>',
                                     '  File "<string>", line 2, in divide'])
        self.assertTrue(lines[-1].startswith("ZeroDivisionError: "), text)
        self.assertTrue(text.endswith("\n"))

    def test_failing_script_keeps_running_at_every_step(self):
        self.activate("seen.append(1)\nno_such_name")
        self.assertEqual(qc.qcSim_step(3), [1])
        messages = qc.qcMessages_take()
        self.assertEqual([kind for kind, text in messages], ["error"] * 3)
        for kind, text in messages:
            self.assertTrue(text.endswith("NameError: name 'no_such_name' is not defined\n"), text)
        self.assertEqual(len(__main__.seen), 3)

    def test_syntax_error_is_reported(self):
        text = self.traceback_of("if 1")
        self.assertTrue('  File "<string>", line 1\n' in text and "\nSyntaxError: " in text, text)

    def test_exit_is_reported_and_ends_nothing(self):
        for script, end in (("raise SystemExit", "SystemExit\n"), ("import sys\nsys.exit(3)", "SystemExit: 3\n"),
                            ("exit('now')", "SystemExit: now\n")):
            text = self.traceback_of(script)
            self.assertTrue(text.endswith(end), text)

    def test_exception_whose_text_fails_is_reported(self):
        text = self.traceback_of("class Sly(Exception):\n    def __str__(self): raise ValueError\nraise Sly()")
        self.assertTrue("Sly" in text, text)

    def test_zero_byte_in_an_exception_s_text_is_written_out(self):
        text = self.traceback_of("raise ValueError('a' + chr(0) + 'b')")
        self.assertTrue(text.endswith("ValueError: a\\x00b\n"), text)

    def test_percent_sign_stays_as_it_is(self):
        text = self.traceback_of("raise ValueError('%s %n 100 %')")
        self.assertTrue(text.endswith("ValueError: %s %n 100 %\n"), text)

    # Each script steps the simulation, which runs the script: the interpreter ends that.
    def test_script_that_steps_without_end_is_reported(self):
        text = self.traceback_of("qc.qcSim_step(1)")
        self.assertTrue("RecursionError" in text or "RuntimeError" in text, text)

    def test_interrupt_in_a_script_is_reported_and_ends_the_steps(self):
        self.activate("seen.append(1)\nif len(seen) == 2: raise KeyboardInterrupt")
        self.check_raises(KeyboardInterrupt, None, qc.qcSim_step, 1000)
        self.assertEqual(len(__main__.seen), 2)
        self.assertTrue(self.take_one_error().endswith("KeyboardInterrupt\n"))
        self.assertEqual(qc.qcSim_step(1), [1])

    def test_signal_ends_the_steps(self):
        self.activate("import os, signal\nseen.append(1)\nif len(seen) == 2: os.kill(os.getpid(), signal.SIGINT)")
        self.check_raises(KeyboardInterrupt, None, qc.qcSim_step, 1000)
        self.assertEqual(len(__main__.seen), 2)
        # the signal may be served within the script, which it then ends
        messages = qc.qcMessages_take()
        self.assertTrue(len(messages) <= 1, messages)

    def test_interrupt_of_an_earlier_script_is_not_kept(self):
        self.activate("seen.append(1)\nif len(seen) == 1: raise KeyboardInterrupt")
        ss.qmStaticStrength_run_script(self.analysis)
        self.take_one_error()
        self.assertEqual(qc.qcSim_step(1), [1])


class Messages(HostTest):

    def test_messages_are_taken_once_in_their_order(self):
        missing = [self.path(name) for name in ("one.json", "two.json")]
        for path in missing:
            qc.qcScene_open(path)
        expected = [("error", path + ": cannot be read: " + os.strerror(errno.ENOENT) + ".") for path in missing]
        self.assertEqual(qc.qcMessages_take(), expected)
        self.assertEqual(qc.qcMessages_take(), [])

    def test_messages_of_the_analysis_come_unchanged_with_their_line_breaks(self):
        human = self.posed_human()
        analysis = self.analysis_of(human)
        qc.qcObject_setProperty(qc.qcHuman_getFigure(human), "SSTR_LoadList", ["no.where"])
        ss.qmStaticStrength_reset(analysis)
        qc.qcObject_setProperty(qc.qcHuman_getHandSite(human, 0), "SSTR_Load", 1.0)
        self.assertEqual(ss.qmStaticStrength_compute(analysis), 1)
        self.assertEqual(qc.qcMessages_take(),
                         [("warning", 'StaticStrength WARNING: cannot parse "no.where"\n'),
                          ("error", "StaticStrength ERROR: illegal load at site man.right_hand.right_palmcenter")])


class Process(HostTest):
    """What happens at the end of the interpreter, in one of its own."""

    def run_script(self, script):
        """Status, standard output and standard error of an interpreter that runs the script."""
        process = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        out, err = process.communicate()
        return process.returncode, out.decode("utf-8"), err.decode("utf-8")

    def test_messages_that_nobody_took_are_shown_at_the_end(self):
        status, out, err = self.run_script("import libqcc as qc\nqc.qcScene_open('one')\nqc.qcMessages_take()\n"
                                           "qc.qcScene_open('two')\nqc.qcScene_open('three')\nprint('done')")
        self.assertEqual((status, out.strip()), (0, "done"))
        self.assertEqual(err.splitlines(), [MISSING % "two", MISSING % "three"])

    def test_of_more_than_ten_thousand_messages_the_oldest_are_shown(self):
        status, out, err = self.run_script("import libqcc as qc\nfor i in range(10002): qc.qcScene_open('f%d' % i)\n"
                                           "m = qc.qcMessages_take()\nprint(len(m))\nprint(m[0][1][:3])\n"
                                           "print(m[-1][1][:7])")
        self.assertEqual((status, out.split()), (0, ["10000", "f2:", "f10001:"]))
        self.assertEqual(err.splitlines(), [MISSING % "f0", MISSING % "f1"])

    def test_scene_and_active_analysis_may_be_left_open_at_the_end(self):
        status, out, err = self.run_script(
            "import libqcc as qc, libqmSSTRc as ss\n"
            "human = qc.qcScene_addHuman(qc.qcScene_new(), %r, 'man')\n"
            "ss.qmStaticStrength_activate(ss.qmStaticStrength_getHandle(human), 'x = 1')\n"
            "v = qc.new_qVector(1, 2, 3)\nqc.qcSim_step(2)\n" % DEFAULT_HUMAN)
        self.assertEqual((status, out.strip(), err), (0, "activate callback", ""))

    def test_host_prints_nothing_on_standard_output(self):
        status, out, err = self.run_script(
            "import libqcc as qc\ns = qc.qcScene_new()\nh = qc.qcScene_addHuman(s, %r, 'man')\n"
            "qc.qcFigure_getPosed(qc.qcHuman_getFigure(h))\nqc.qcScene_open('none')\nqc.qcMessages_take()\n"
            "qc.qcScene_close(s)\nqc.qcSim_step(1)\n" % DEFAULT_HUMAN)
        self.assertEqual((status, out, err), (0, "", ""))

    def test_modules_may_be_imported_in_either_order(self):
        for first, second in (("libqcc", "libqmSSTRc"), ("libqmSSTRc", "libqcc")):
            status, out, err = self.run_script(
                "import %s, %s, libqcc as qc, libqmSSTRc as ss\nh = qc.qcScene_addHuman(qc.qcScene_new(), %r, 'man')\n"
                "print(ss.qmStaticStrength_compute(ss.qmStaticStrength_getHandle(h)))" % (first, second, DEFAULT_HUMAN))
            self.assertEqual((status, out.strip(), err), (0, "1", ""))


if __name__ == "__main__":
    main()
