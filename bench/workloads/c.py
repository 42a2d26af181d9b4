# Workload c: 100,000 string concatenations and substrings.
i = 0
result = 0
while i < 100000:
    line = "item " + str(i) + ";"
    word = line[0:4]
    result += len(word)
    i += 1
print(result)
