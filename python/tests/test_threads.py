"""Threads load and render at once (the GIL is released around loads and renders) and each gets
what one thread alone gets."""

import datetime
import threading

import brixobjects4 as brix
from conftest import EXAMPLES, SAMPLES


def render_all(text):
    query = brix.Query.load(text, today=datetime.date(2024, 3, 15))
    return (query.sql(top=3), query.where(), query.full_text(), query.describe(),
            query.parameterized("postgresql"), query.save())


def test_eight_threads_render_as_one_thread_does():
    texts = [(EXAMPLES / sample).read_bytes() for sample in SAMPLES]
    with brix.fixed_clock(datetime.datetime(2024, 3, 15, 9, 30)):
        expected = [render_all(text) for text in texts]
        results = {}
        start = threading.Barrier(8)

        def work(number):
            start.wait()
            results[number] = [[render_all(text) for text in texts] for _ in range(40)]

        threads = [threading.Thread(target=work, args=(n,)) for n in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert len(results) == 8
    for rounds in results.values():
        assert all(round_ == expected for round_ in rounds)
