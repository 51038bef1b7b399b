# The everyday commands. Each installs the packages that it misses, says what it does, and may be
# called again at any time; the work itself is in CMakePresets.json.
.PHONY: help run test debug clang asan check bench comma fuzz abi abi-record valgrind format lint layout cppcheck tidy tidy-all clean

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
	@echo 'make check     test, debug, clang and asan'
	@echo 'make bench     measures'
	@echo 'make comma     the tests in a process locale with a decimal comma'
	@echo 'make fuzz SECONDS=20   feeds the readers and the analysis arbitrary input'
	@echo 'make abi       compares the binary interface of the libraries with its record, abi/'
	@echo 'make abi-record makes that record anew'
	@echo 'make format    lays out the C++ sources'
	@echo 'make lint      layout, cppcheck and clang-tidy: each alone is make layout, make cppcheck, make tidy'
	@echo 'make tidy-all  clang-tidy, the tests too'
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

comma:
	$(INSTALL) run test
	$(call build,release)
	$(call say,Testing the preset "release" in a locale with a decimal comma)
	@scripts/test-comma.sh -j $(shell nproc)

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

# How long each fuzzer runs.
SECONDS ?= 20

fuzz:
	$(INSTALL) run check
	$(call build,fuzz)
	$(call say,Fuzzing for $(SECONDS) seconds each)
	@scripts/fuzz.sh $(SECONDS)

valgrind:
	$(INSTALL) run test check
	$(call build,valgrind)
	$(call say,Passing the tests under valgrind)
	@scripts/valgrind.sh

abi:
	$(INSTALL) run check
	$(call build,abi)
	$(call say,Comparing the binary interface with abi/)
	@scripts/abi.sh check build/abi

abi-record:
	$(INSTALL) run check
	$(call build,abi)
	$(call say,Recording the binary interface in abi/)
	@scripts/abi.sh record build/abi

format:
	$(INSTALL) check
	$(call say,Laying out the C++ sources)
	@scripts/lint.sh format

# How each source is compiled, for the linters. They need nothing built.
define commands
$(INSTALL) run test bench check
@cmake --preset lint >/dev/null
endef

tidy:
	$(commands)
	$(call say,clang-tidy: the product)
	@scripts/lint.sh tidy build/lint

tidy-all:
	$(commands)
	$(call say,clang-tidy: the product and the tests)
	@scripts/lint.sh tidy build/lint StaticStrength host python sstr bench fuzz tests

cppcheck:
	$(commands)
	$(call say,cppcheck)
	@scripts/lint.sh cppcheck build/lint

layout:
	$(INSTALL) check
	$(call say,clang-format)
	@scripts/lint.sh layout

lint: layout cppcheck tidy

clean:
	rm -rf build
