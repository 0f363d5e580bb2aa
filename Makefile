# Thin wrapper around CMake: `make demo`, `make test`, `make release`, `make bench`, `make fuzz`.
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE ?= cmake
RELEASE_DIR := build/release
TEST_DIR := build/test
BENCH_DIR := build/bench
FUZZ_DIR := build/fuzz
DEMO_VCD := build/hello6502.vcd
# Seconds of fuzzing for each target.
FUZZ_SECONDS ?= 30

.PHONY: all release demo test bench fuzz fuzz-build clean

all: release

release:
	$(CMAKE) -S . -B $(RELEASE_DIR) -DCMAKE_BUILD_TYPE=Release -DMORVANE_TESTS=OFF
	$(CMAKE) --build $(RELEASE_DIR) -j $(JOBS)

demo: release
	./$(RELEASE_DIR)/Cli/morvane -v -P -x examples/hello6502/hello.ctc examples/hello6502/hello.tv
	./$(RELEASE_DIR)/Wave/morvane-wave -v -o $(DEMO_VCD) examples/hello6502/hello.ctc examples/hello6502/hello.tv
	@echo "Waveforms in $(DEMO_VCD); to look at them: gtkwave $(DEMO_VCD)"

test:
	$(CMAKE) -S . -B $(TEST_DIR) -DCMAKE_BUILD_TYPE=Debug -DMORVANE_SANITIZE=ON -DMORVANE_WERROR=$(if $(WERROR),ON,OFF)
	$(CMAKE) --build $(TEST_DIR) -j $(JOBS)
	cd $(TEST_DIR) && ctest --output-on-failure -j $(JOBS)

# Builds Release, runs the micro-benchmarks and the generated circuits, prints the tables.
bench:
	BUILD_DIR=$(CURDIR)/$(BENCH_DIR) bench/run_bench.sh

# The fuzz build uses clang for everything; the gcc builds above stay as they are.
fuzz-build:
	$(CMAKE) -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
		-DMORVANE_TESTS=OFF -DMORVANE_FUZZ=ON -DMORVANE_WERROR=$(if $(WERROR),ON,OFF)
	$(CMAKE) --build $(FUZZ_DIR) -j $(JOBS)

fuzz: fuzz-build
	tests/fuzz/run_fuzzers.sh $(FUZZ_DIR)/tests/fuzz $(FUZZ_SECONDS)

clean:
	rm -rf build
