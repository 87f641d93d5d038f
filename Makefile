# Tessaphon: the two everyday commands are `make run` and `make test`.
BUILD      ?= build
FUZZ_BUILD ?= build-fuzz
ASAN_BUILD ?= build-asan
FUZZ_SECONDS ?= 60
JOBS       ?= $(shell nproc)

PREFIX     ?= $(HOME)/.local

.PHONY: all deps configure build run test test-asan bench fuzz install clean

all: build

deps:
	@bash tools/install-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -x $(BUILD)/bin/tessaphon ]; then \
		$(BUILD)/bin/tessaphon; \
	else \
		$(BUILD)/bin/tessaphon-cli synth examples/vowel-a.stk -o $(BUILD)/vowel-a.wav && \
		echo "Synthesized examples/vowel-a.stk into $(BUILD)/vowel-a.wav"; \
	fi

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

# The whole suite under AddressSanitizer and UndefinedBehaviorSanitizer, the replays of the fuzz
# targets' stored inputs included.
test-asan: deps
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTESSAPHON_SANITIZE=ON -DTESSAPHON_BENCH=OFF
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: build
	@for b in $(BUILD)/bin/bench_*; do echo "== $$b"; $$b --benchmark_repetitions=5 --benchmark_report_aggregates_only=true; done
	@echo "== tessaphon-cli, whole processes"; bash bench/cli_bench.sh $(BUILD)
	@if [ -d $(BUILD)/python/tessaphon ]; then \
		echo "== Python module"; PYTHONPATH=$(BUILD)/python /usr/bin/python3 bench/python_bench.py $(BUILD); \
	fi

# Each fuzz target runs for FUZZ_SECONDS on its seeds (made by the program itself) and on the
# inputs kept in fuzz/corpus/<target>/, which the tests replay. New inputs go to the build's
# corpus; a crash found is copied into fuzz/corpus/<target>/ once it is fixed.
fuzz: deps
	CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
		-DTESSAPHON_FUZZ=ON -DTESSAPHON_GUI=OFF -DTESSAPHON_TESTS=OFF -DTESSAPHON_BENCH=OFF
	cmake --build $(FUZZ_BUILD) -j $(JOBS)
	@for f in $(FUZZ_BUILD)/bin/fuzz_*; do \
		name=$$(basename $$f); corpus=$(FUZZ_BUILD)/corpus/$$name; mkdir -p $$corpus; \
		$$f --make-seeds $$corpus >/dev/null 2>&1 || true; \
		echo "== $$name ($(FUZZ_SECONDS) s)"; \
		$$f -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/$$name- \
			$$corpus fuzz/corpus/$$name || exit 1; \
	done

# Installs the programs, man pages, desktop entry, MIME type, icon and Python module under PREFIX
# (default ~/.local), then refreshes the desktop's caches there so the menu and file manager see them.
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)
	-@command -v update-mime-database >/dev/null && update-mime-database $(PREFIX)/share/mime
	-@command -v update-desktop-database >/dev/null && update-desktop-database $(PREFIX)/share/applications
	-@command -v gtk-update-icon-cache >/dev/null && gtk-update-icon-cache -q -t $(PREFIX)/share/icons/hicolor
	@echo "Installed under $(PREFIX); make sure $(PREFIX)/bin is on your PATH."
	@if [ -d $(PREFIX)/lib/python3/dist-packages/tessaphon ]; then \
		echo "Python module: PYTHONPATH=$(PREFIX)/lib/python3/dist-packages python3 -c 'import tessaphon'"; \
	fi

clean:
	rm -rf $(BUILD) $(FUZZ_BUILD) $(ASAN_BUILD)
