# The everyday commands. Each installs the packages that it misses, says what it does, and may be
# called again at any time; the work itself is in CMakePresets.json.
.PHONY: help run test debug clang asan check bench valgrind format tidy clean

INSTALL := @scripts/install-packages.sh
say = @printf '== %s\n' '$(1)'

# Configures and builds the preset $(1).
define build
$(call say,Building the preset "$(1)" in build/$(1))
@cmake --preset $(1)
@cmake --build --preset $(1)
endef

# Builds the preset $(1), warnings being errors, and passes its tests.
define test
$(call build,$(1))
$(call say,Testing the preset "$(1)")
@ctest --preset $(1) -j $(shell nproc)
endef

help:
	@echo 'make run       builds the program and analyses examples/lift_box.json'
	@echo 'make test      builds with warnings as errors and passes all tests'
	@echo
	@echo 'make debug     the tests, unoptimised and with assertions'
	@echo 'make clang     the tests, built by clang, optimised and not'
	@echo 'make asan      the tests under the address and undefined-behaviour sanitizers'
	@echo 'make valgrind  the tests and the examples under valgrind'
	@echo 'make check     all of the above but valgrind'
	@echo 'make bench     measures'
	@echo 'make format    lays out the C++ sources'
	@echo 'make tidy      lints the C++ sources'
	@echo 'make clean     removes build/'
	@echo
	@echo 'What is missing is installed through apt-get first; the list is packages.txt.'

run:
	$(INSTALL) run
	$(call build,run)
	$(call say,sstr compute examples/lift_box.json)
	@build/run/sstr/sstr compute examples/lift_box.json

test:
	$(INSTALL) run test
	$(call test,release)

debug:
	$(INSTALL) run test
	$(call test,debug)

clang:
	$(INSTALL) run test check
	$(call test,release-clang)
	$(call test,debug-clang)

asan:
	$(INSTALL) run test
	$(call test,asan-ubsan)

check: test debug clang asan

bench:
	$(INSTALL) run bench
	$(call build,bench)
	@set -e; for program in $$(find build/bench/bench -maxdepth 1 -type f -executable | sort); do \
	    printf '== %s\n' "$$program"; "$$program" $(BENCH_ARGS); done
	@set -e; for script in bench/*.py; do \
	    printf '== %s\n' "$$script"; PYTHONPATH=build/bench/python /usr/bin/python3 "$$script"; done

# Memory that stays reachable until the end is not a leak: the host keeps free lists.
VALGRIND := valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite,indirect,possible

valgrind:
	$(INSTALL) run test check
	$(call build,debug)
	@set -e; for program in $$(find build/debug/tests -mindepth 2 -maxdepth 2 -type f -executable -name '*Test' | sort); do \
	    printf '== valgrind %s\n' "$$program"; $(VALGRIND) "$$program" --gtest_brief=1; done
	@set -e; for scene in examples/*.json; do \
	    printf '== valgrind sstr compute %s\n' "$$scene"; \
	    $(VALGRIND) build/debug/sstr/sstr compute "$$scene" >/dev/null; done

format:
	$(INSTALL) check
	$(call say,Laying out the C++ sources)
	@git ls-files -z --cached --others --exclude-standard -- '*.cpp' '*.h' | xargs -0 clang-format -i

tidy:
	$(INSTALL) run test check
	$(call build,release-clang)
	$(call say,Linting the C++ sources)
	@run-clang-tidy -quiet -p build/release-clang '/(host|StaticStrength|python|sstr)/[^.]*\.cpp$$'

clean:
	rm -rf build
