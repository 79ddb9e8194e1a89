"""The load balancer: who is sent to which back-end, and whose sessions count there."""

from concurrent.futures import ThreadPoolExecutor

from document_server.documents import document

from tests.document_server.case import ServerTest
from tests.document_server.client import (ACCESS_CHECK, LOGIN_PAGE, Answer, cookie_header, cookies_set,
                                          fetch, log_in, raw_answer)

POOL = "BIGipServer~pool~documents"
GUARD = "TS01d2f6a5"
BACK_ENDS = ["back-end-1", "back-end-2", "back-end-3"]


class BalancerTest(ServerTest):
    """Has what these tests ask a server with a load balancer."""

    def fetch_logged(self, path: str, cookies: dict[str, str] | None = None) -> tuple[Answer, str]:
        """The answer to a client with those cookies, and the back-end that it came from."""
        answer = fetch(self.server, path, headers=cookie_header(cookies) if cookies else None)
        return answer, self.server.requests()[-1]["back_end"]

    def new_clients(self) -> dict[str, dict[str, str]]:
        """One client for each back-end: the cookies that it was given, by the name of the back-end."""
        clients = {}
        for _ in BACK_ENDS:
            answer, back_end = self.fetch_logged("/empty")
            clients[back_end] = cookies_set(answer)
        return clients


class ThreeBackEnds(BalancerTest):

    options = ("--back-ends", "3")

    def test_clients_without_a_cookie_go_to_the_back_ends_in_turn(self) -> None:
        seen = [self.fetch_logged("/empty")[1] for _ in range(7)]
        first = BACK_ENDS.index(seen[0])
        self.assertEqual(seen, [BACK_ENDS[(first + turn) % 3] for turn in range(7)])

    def test_the_first_answer_sets_both_cookies_for_the_whole_site(self) -> None:
        cookies = fetch(self.server, "/empty").headers.get_all("Set-Cookie")
        attributes = "; path=/; HttpOnly; SameSite=Lax"
        self.assertEqual(len(cookies), 2)
        self.assertRegex(cookies[0], rf"\A{POOL}=![A-Za-z0-9+/]{{42}}=={attributes}\Z")
        self.assertRegex(cookies[1], rf"\A{GUARD}=[0-9a-f]{{64}}{attributes}\Z")

    def test_the_cookie_names_the_back_end_and_says_nothing_of_it(self) -> None:
        clients = self.new_clients()
        self.assertEqual(sorted(clients), BACK_ENDS)
        self.assertEqual(len({cookies[POOL] for cookies in clients.values()}), 3)
        for back_end, cookies in clients.items():
            self.assertNotIn(back_end, cookies[POOL])

    def test_a_client_with_the_cookie_stays_and_is_given_no_other(self) -> None:
        for back_end, cookies in self.new_clients().items():
            for sent in (cookies, {POOL: cookies[POOL]}, {"a": "b", GUARD: "x", POOL: cookies[POOL]}):
                with self.subTest(back_end, sent=list(sent)):
                    answer, seen = self.fetch_logged("/empty", sent)
                    self.assertEqual((seen, cookies_set(answer)), (back_end, {}))

    def test_a_cookie_that_is_unknown_counts_as_none(self) -> None:
        value = cookies_set(fetch(self.server, "/empty"))[POOL]
        for cookies in ({POOL: ""}, {POOL: "back-end-1"}, {POOL: value.rstrip("=")}, {POOL: value.swapcase()},
                        {POOL: f'"{value}"'}, {POOL: value + "x"}, {POOL: "x" * 60_000}, {POOL: "\u00e9"},
                        {POOL.lower(): value}, {"BIGipServer": value}, {GUARD: value}):
            with self.subTest(str(cookies)[:60]):
                answer, _ = self.fetch_logged("/empty", cookies)
                self.assertEqual((answer.status, list(cookies_set(answer))), (200, [POOL, GUARD]))

    def test_every_kind_of_answer_sets_the_cookies(self) -> None:
        for path in ("/", LOGIN_PAGE, "/documents/plan", ACCESS_CHECK, "/basic/", "/redirect/form", "/nowhere",
                     "/status/204", "/status/304", "/status/9", "/bytes/10", "/bytes/10?chunked=1"):
            with self.subTest(path):
                self.assertEqual(list(cookies_set(fetch(self.server, path))), [POOL, GUARD])

    def test_an_answer_that_is_no_http_is_a_back_ends_too(self) -> None:
        for path in ("/hostile/drop", "/hostile/garbage"):
            with self.subTest(path):
                self.assertNotIn(POOL.encode(), raw_answer(self.server, path))
                self.assertIn(self.server.requests()[-1]["back_end"], BACK_ENDS)

    def test_a_login_sets_the_session_cookie_beside_those_of_the_load_balancer(self) -> None:
        answer = log_in(self.server, LOGIN_PAGE)
        self.assertEqual(sorted(cookies_set(answer)), sorted(["JSESSIONID", POOL, GUARD]))
        self.assertEqual(fetch(self.server, ACCESS_CHECK, headers=cookie_header(cookies_set(answer))).status, 200)

    def test_a_session_counts_at_its_own_back_end_only(self) -> None:
        clients = self.new_clients()
        for home, cookies in clients.items():
            session = cookies_set(log_in(self.server, LOGIN_PAGE, headers=cookie_header(cookies)))
            self.assertEqual(list(session), ["JSESSIONID"])
            for back_end, others in clients.items():
                with self.subTest(session=home, back_end=back_end):
                    answer, seen = self.fetch_logged("/documents/plan?size=9", session | {POOL: others[POOL]})
                    self.assertEqual(seen, back_end)
                    self.assertEqual((answer.status, answer.body),
                                     (200, document("plan", 9)) if home == back_end else (403, b"Forbidden.\n"))

    def test_a_session_cookie_alone_is_lost_among_the_back_ends(self) -> None:
        session = {"JSESSIONID": cookies_set(log_in(self.server, LOGIN_PAGE))["JSESSIONID"]}
        statuses = [self.fetch_logged(ACCESS_CHECK, session)[0].status for _ in BACK_ENDS]
        self.assertEqual(sorted(statuses), [200, 403, 403])

    def test_a_logout_elsewhere_leaves_the_session_at_home(self) -> None:
        here, elsewhere, _ = self.new_clients().values()
        here |= cookies_set(log_in(self.server, LOGIN_PAGE, headers=cookie_header(here)))
        fetch(self.server, "/logout", headers=cookie_header(here | {POOL: elsewhere[POOL]}))
        self.assertEqual(self.fetch_logged(ACCESS_CHECK, here)[0].status, 200)

    def test_simultaneous_clients_are_spread_evenly(self) -> None:
        before = len(self.server.requests())
        with ThreadPoolExecutor(16) as pool:
            list(pool.map(lambda _: fetch(self.server, "/empty"), range(60)))
        seen = [entry["back_end"] for entry in self.server.requests()[before:]]
        self.assertEqual([seen.count(back_end) for back_end in BACK_ENDS], [20, 20, 20])


class OneBackEnd(BalancerTest):

    options = ("--back-ends", "1")

    def test_a_single_back_end_stands_behind_a_load_balancer_as_well(self) -> None:
        answer, back_end = self.fetch_logged("/empty")
        self.assertEqual((list(cookies_set(answer)), back_end), ([POOL, GUARD], "back-end-1"))


class WithoutALoadBalancer(BalancerTest):

    def test_no_cookie_is_set_and_the_log_names_no_back_end(self) -> None:
        for cookies in (None, {POOL: "x", GUARD: "y"}):
            with self.subTest(cookies):
                answer, back_end = self.fetch_logged("/empty", cookies)
                self.assertEqual((answer.headers["Set-Cookie"], back_end), (None, None))
