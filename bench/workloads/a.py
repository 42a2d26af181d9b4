# Workload a: a while loop of 1,000,000 iterations of integer arithmetic with a compound assignment.
i = 0
result = 0
while i < 1000000:
    result += i * 3 % 7
    i += 1
print(result)
