"""Reads scripts/faults.txt and applies one fault; used by scripts/faults.sh."""
import sys
from pathlib import Path


def read_faults(path):
    faults = []
    lines = Path(path).read_text(encoding="utf-8").split("\n")
    i = 0
    while i < len(lines):
        line = lines[i]
        if not line.startswith("== "):
            i += 1
            continue
        fault_id, file_name = line[3:].split()
        description = lines[i + 1]
        if lines[i + 2] != "<<<":
            raise SystemExit(f"{path}: fault {fault_id}: expected <<< after the description")
        j = i + 3
        snippet = []
        while lines[j] != "===":
            snippet.append(lines[j])
            j += 1
        j += 1
        replacement = []
        while lines[j] != ">>>":
            replacement.append(lines[j])
            j += 1
        faults.append({
            "id": fault_id,
            "file": file_name,
            "description": description,
            "snippet": "\n".join(snippet) + "\n",
            "replacement": "\n".join(replacement) + ("\n" if replacement else ""),
        })
        i = j + 1
    ids = [f["id"] for f in faults]
    if len(ids) != len(set(ids)):
        raise SystemExit(f"{path}: duplicate fault ids")
    return faults


def occurrences(root, fault):
    source = Path(root) / fault["file"]
    if not source.is_file():
        return 0
    return source.read_text(encoding="utf-8").count(fault["snippet"])


def main():
    command = sys.argv[1]
    if command == "ids":
        wanted = sys.argv[3:]
        for fault in read_faults(sys.argv[2]):
            if not wanted or fault["id"] in wanted:
                print(fault["id"])
    elif command == "check":
        root, path, wanted = sys.argv[2], sys.argv[3], sys.argv[4:]
        bad = 0
        for fault in read_faults(path):
            if wanted and fault["id"] not in wanted:
                continue
            count = occurrences(root, fault)
            state = "applies" if count == 1 else f"not applicable (snippet found {count} times)"
            bad += count != 1
            print(f"{fault['id']:32} {state}")
        sys.exit(1 if bad else 0)
    elif command == "apply":
        root, path, fault_id, backup = sys.argv[2:6]
        fault = next(f for f in read_faults(path) if f["id"] == fault_id)
        if occurrences(root, fault) != 1:
            sys.exit(1)
        source = Path(root) / fault["file"]
        text = source.read_text(encoding="utf-8")
        Path(backup).write_text(text, encoding="utf-8")
        source.write_text(text.replace(fault["snippet"], fault["replacement"]), encoding="utf-8")
        print(fault["file"])
    elif command == "report":
        faults = {f["id"]: f for f in read_faults(sys.argv[2])}
        rows = [line.split("\t") for line in Path(sys.argv[3]).read_text().splitlines() if line]
        print(f"{'fault':32} {'result':12} {'seconds':>7}  caught by / description")
        for fault_id, result, caught_by, seconds in rows:
            print(f"{fault_id:32} {result:12} {seconds:>7}  {caught_by}")
            print(f"{'':32} {'':12} {'':>7}  {faults[fault_id]['file']}: {faults[fault_id]['description']}")
        counts = {}
        for row in rows:
            counts[row[1]] = counts.get(row[1], 0) + 1
        print()
        print("; ".join(f"{result}: {count}" for result, count in sorted(counts.items())))
    else:
        raise SystemExit(f"unknown command {command}")


if __name__ == "__main__":
    main()
